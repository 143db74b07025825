#pragma once

namespace corvane {

/// The system that the program was built for. Texts that would be false on the other one stand side
/// by side, chosen by this; everything else is the same on both.
enum class HostSystem { mac, linuxDesktop };

HostSystem hostSystem();

} // namespace corvane
