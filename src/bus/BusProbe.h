#pragma once

#include "platform/FileDescriptor.h"

#include <QObject>
#include <QString>

#include <chrono>
#include <memory>
#include <optional>
#include <string>

class QSocketNotifier;

namespace corvane {

/// Finds out whether a bus answers, without blocking: the bus library connects synchronously and
/// would block its caller for as long as the bus hangs. Main thread. Emits exactly one of the two
/// signals, once and from the event loop; neither while the bus hangs.
class BusProbe : public QObject {
    Q_OBJECT

public:
    explicit BusProbe(const QString &address, QObject *parent = nullptr);
    ~BusProbe() override;

signals:
    /// The bus answered, or its address is of a kind that cannot be probed.
    void answered();
    /// Nothing listens at the address, or the connection was closed without an answer.
    void refused();

private:
    void readAnswer();

    FileDescriptor m_socket;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

/// Whether something listens at the address and gives no answer within the time-out; blocks until
/// it is known. False for an address of a kind that cannot be probed.
bool busHangs(const QString &address, std::chrono::milliseconds timeout);

/// The Unix socket that an address names, as connectTo takes it; absent for other addresses.
std::optional<std::string> busSocket(const QString &address);

} // namespace corvane
