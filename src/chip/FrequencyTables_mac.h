#pragma once

#include "chip/FrequencyTables.h"

#include <string>
#include <vector>

namespace corvane {

/// The tables of this Mac. They do not change while it runs. Any thread.
FrequencyTables readFrequencyTables();

namespace IORegistryReader {

/// The table under `key` of the power manager's registry entry; empty when there is none.
std::vector<double> readPmgrFrequencies(const std::string &key);

} // namespace IORegistryReader

} // namespace corvane
