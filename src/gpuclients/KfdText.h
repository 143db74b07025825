#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corvane {

// Pure functions over the files of AMD's compute driver.

/// The PCI address of a node of its topology, by the lines "domain" and "location_id" of
/// `properties`: "0000:c1:00.0". Absent for a node that is no device on that bus.
std::optional<std::string> kfdAddress(std::string_view properties);

} // namespace corvane
