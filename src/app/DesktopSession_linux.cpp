#include "app/DesktopSession.h"

#include "bus/BusOpening.h"
#include "bus/SessionBus.h"

namespace corvane {

namespace {

/// For the session bus to answer; a healthy one takes a fraction of a millisecond.
constexpr auto busTimeout = std::chrono::seconds(3);

} // namespace

bool prepareDesktopSession()
{
    preventBusStart();
    disableHangingBus(busTimeout);
    return startBusThread();
}

} // namespace corvane
