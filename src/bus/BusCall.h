#pragma once

#include <QDBusConnection>
#include <QDBusMessage>

#include <chrono>
#include <functional>
#include <optional>

namespace corvane {

/// Questions over a message bus that nobody waits for. Main thread.
namespace BusCall {

using Use = std::function<void(const QDBusMessage &reply)>;

/// Whether it is an answer, rather than an error or silence.
bool isReply(const QDBusMessage &message);

/// Hands the reply to `use`, unless the receiver is gone by then; for an error, or after this time
/// (absent: as long as is usual) without an answer, an invalid message without arguments. Over a
/// bus that is not connected nothing is asked and nothing comes.
void ask(const QDBusConnection &bus, const QDBusMessage &call, QObject *receiver, const Use &use,
         std::optional<std::chrono::milliseconds> patience = {});

/// A call of the bus itself.
QDBusMessage toBus(const QString &method, const QVariantList &arguments = {});

} // namespace BusCall

} // namespace corvane
