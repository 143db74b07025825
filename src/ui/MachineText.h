#pragma once

#include "ui/MetricText.h"

namespace corvane {

/// The texts of a machine that is not a whole chip of Apple: each device where it exists, and a
/// reason where its value cannot be read.

/// The rows between memory and swap.
std::vector<MetricRow> unitRows(const MetricValues &values);

/// The label's numbers after the memory's: one to three.
LabelNumbers unitNumbers(const MetricValues &values);

PowerText machinePowerText(const PowerTotal &power);

/// Why a value is missing, in a few words: "locked", "not published", "restart needed". Empty for a
/// known or absent one.
QString reasonText(Coverage coverage);

} // namespace corvane
