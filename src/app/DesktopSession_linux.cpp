#include "app/DesktopSession.h"

#include "bus/AccessibilityBus.h"
#include "bus/BusOpening.h"
#include "bus/SessionBus.h"

namespace corvane {

namespace {

/// For the session bus to answer; a healthy one takes a fraction of a millisecond.
constexpr auto busTimeout = std::chrono::seconds(3);

/// The same for that of accessibility, which may be started by the question.
constexpr auto accessibilityTimeout = std::chrono::seconds(2);

} // namespace

bool prepareDesktopSession()
{
    preventBusStart();
    disableHangingBus(busTimeout);
    if (!startBusThread())
        return false;
    disableHangingAccessibilityBus(accessibilityTimeout);
    return true;
}

} // namespace corvane
