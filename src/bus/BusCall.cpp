#include "bus/BusCall.h"

#include <QDBusPendingCallWatcher>

namespace corvane {

using namespace Qt::StringLiterals;

bool BusCall::isReply(const QDBusMessage &message)
{
    return message.type() == QDBusMessage::ReplyMessage;
}

void BusCall::ask(const QDBusConnection &bus, const QDBusMessage &call, QObject *receiver,
                  const Use &use, std::optional<std::chrono::milliseconds> patience)
{
    const int timeout = patience ? static_cast<int>(patience->count()) : -1;
    auto *answer = new QDBusPendingCallWatcher(bus.asyncCall(call, timeout), receiver);
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, receiver, [answer, use] {
        answer->deleteLater();
        use(answer->isError() ? QDBusMessage() : answer->reply());
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
