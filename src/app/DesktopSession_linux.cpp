#include "app/DesktopSession.h"

#include "bus/AccessibilityBus.h"
#include "bus/BusOpening.h"
#include "bus/SessionBus.h"

#include <QLoggingCategory>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// For the session bus to answer; a healthy one takes a fraction of a millisecond.
constexpr auto busTimeout = std::chrono::seconds(3);

/// The same for that of accessibility, which may be started by the question.
constexpr auto accessibilityTimeout = std::chrono::seconds(2);

} // namespace

bool prepareDesktopSession()
{
    // A screen reader may ask for a part that has just gone; Qt would report every such question.
    QLoggingCategory::setFilterRules(u"qt.accessibility.atspi.warning=false"_s);
    preventBusStart();
    disableHangingBus(busTimeout);
    if (!startBusThread())
        return false;
    disableHangingAccessibilityBus(accessibilityTimeout);
    return true;
}

} // namespace corvane
