#pragma once

namespace corvane {

/// The system that the program was built for. A text that would be false on the other system has
/// two wordings, chosen by this; everything else is the same on both.
enum class HostSystem { mac, linuxDesktop };

HostSystem hostSystem();

} // namespace corvane
