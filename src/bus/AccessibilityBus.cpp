#include "bus/AccessibilityBus.h"

#include "bus/BusCall.h"
#include "bus/BusOpening.h"
#include "bus/BusProbe.h"
#include "threads/MainThread.h"
#include "threads/TimedCalls.h"

#include <QDBusArgument>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr auto variable = "AT_SPI_BUS_ADDRESS";

/// Nobody is asked to start a service that does not run.
QDBusMessage ask(const QDBusConnection &bus, const QString &interface, const QString &method,
                 const QVariantList &arguments, std::chrono::milliseconds timeout)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(u"org.a11y.Bus"_s, u"/org/a11y/bus"_s, interface, method);
    call.setAutoStartService(false);
    call.setArguments(arguments);
    const QDBusMessage reply = bus.call(call, QDBus::Block, static_cast<int>(timeout.count()));
    return BusCall::isReply(reply) ? reply : QDBusMessage();
}

/// Empty where the libraries will not connect to it. The question starts the bus, so it is only
/// asked where they ask it too.
QString accessibilityAddress(const QString &session, std::chrono::milliseconds timeout)
{
    const QDBusConnection bus = openBus(session);
    const QDBusMessage status = ask(bus, u"org.freedesktop.DBus.Properties"_s, u"GetAll"_s,
                                    {u"org.a11y.Status"_s}, timeout);
    const auto states = qdbus_cast<QVariantMap>(status.arguments().value(0));
    if (!states.value(u"IsEnabled"_s).toBool() && !states.value(u"ScreenReaderEnabled"_s).toBool())
        return {};
    return ask(bus, u"org.a11y.Bus"_s, u"GetAddress"_s, {}, timeout)
        .arguments()
        .value(0)
        .toString();
}

} // namespace

void disableHangingAccessibilityBus(std::chrono::milliseconds timeout)
{
    assertMainThread();
    const QString given = qEnvironmentVariable(variable);
    // The libraries' address, which is disabled where that bus hangs.
    const QString session = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    if (given.isEmpty() && session.isEmpty())
        return;
    const std::function<bool()> hangs = [given, session, timeout] {
        const QString address = given.isEmpty() ? accessibilityAddress(session, timeout) : given;
        return !address.isEmpty() && busHangs(address, timeout);
    };
    // On another thread, as the bus of the session may stop between its answer and the connection.
    if (TimedCalls(1).call(hangs, 2 * timeout).value.value_or(false))
        qputenv(variable, "disabled:");
}

} // namespace corvane
