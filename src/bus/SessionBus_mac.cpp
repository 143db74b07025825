#include "bus/SessionBus.h"

namespace corvane {

/// A Mac has none.
QString sessionBusAddress()
{
    return {};
}

void startNoSessionBus() { }

void hideHangingBus(std::chrono::milliseconds) { }

} // namespace corvane
