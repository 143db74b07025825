#include "bus/BusCall.h"

#include "threads/MainThread.h"

#include <QDBusPendingCallWatcher>

namespace corvane {

using namespace Qt::StringLiterals;

bool BusCall::isReply(const QDBusMessage &message)
{
    return message.type() == QDBusMessage::ReplyMessage;
}

void BusCall::send(const QDBusConnection &bus, const QDBusMessage &call, QObject *receiver,
                   const ReplyHandler &onReply, std::optional<std::chrono::milliseconds> timeout)
{
    assertMainThread();
    const int milliseconds = timeout ? static_cast<int>(timeout->count()) : -1;
    auto *pending = new QDBusPendingCallWatcher(bus.asyncCall(call, milliseconds), receiver);
    QObject::connect(pending, &QDBusPendingCallWatcher::finished, receiver, [pending, onReply] {
        pending->deleteLater();
        onReply(pending->isError() ? QDBusMessage() : pending->reply());
    });
}

QDBusMessage BusCall::toBus(const QString &method, const QVariantList &arguments)
{
    const QString name = u"org.freedesktop.DBus"_s;
    QDBusMessage call =
        QDBusMessage::createMethodCall(name, u"/org/freedesktop/DBus"_s, name, method);
    call.setArguments(arguments);
    return call;
}

} // namespace corvane
