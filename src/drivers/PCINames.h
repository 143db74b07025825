#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

// Pure functions over the list of PCI devices that distributions install as pci.ids.

/// The name that the list gives a device, as "Navi 22 [Radeon RX 6700/6700 XT]"; absent without an
/// entry.
std::optional<std::string> pciDeviceName(std::string_view list, std::uint16_t vendor,
                                         std::uint16_t device);

/// A name to show for a GPU, from the list's: what stands in brackets is the product's, and the
/// maker comes first. One that is too long for a heading ends in "…". Empty when the list's name is
/// not UTF-8 or has control characters.
std::string gpuProductName(std::string_view maker, std::string_view listName);

/// "0x10de" → 0x10de, as in the `vendor` and `device` files of the kernel.
std::optional<std::uint16_t> parsePCINumber(std::string_view text);

} // namespace corvane
