#pragma once

#include <QDBusConnection>
#include <QDBusMessage>

#include <chrono>
#include <functional>
#include <optional>

namespace corvane {

/// Asynchronous method calls over a message bus. Main thread, which never waits for a reply.
namespace BusCall {

using ReplyHandler = std::function<void(const QDBusMessage &reply)>;

/// Whether a message is a reply, rather than an error or the invalid message of a time-out.
bool isReply(const QDBusMessage &message);

/// Sends the call and hands its reply to `onReply`, unless the receiver is gone by then. An error,
/// or no reply within the time-out (absent: the bus library's own), is an invalid message without
/// arguments. Over a bus that is not connected nothing is sent and `onReply` is never called.
void send(const QDBusConnection &bus, const QDBusMessage &call, QObject *receiver,
          const ReplyHandler &onReply, std::optional<std::chrono::milliseconds> timeout = {});

/// A call to the bus itself, org.freedesktop.DBus.
QDBusMessage toBus(const QString &method, const QVariantList &arguments = {});

} // namespace BusCall

} // namespace corvane
