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

/// Finds out whether a bus answers, without waiting for it: the bus library makes a connection in
/// one go and holds its caller up, for ever where the bus hangs. Main thread. Tells one of
/// the two, once and from the event loop; neither while the bus hangs.
class BusProbe : public QObject {
    Q_OBJECT

public:
    explicit BusProbe(const QString &address, QObject *parent = nullptr);
    ~BusProbe() override;

signals:
    /// Somebody is there. Also for an address of a kind at which one cannot knock.
    void answered();
    void refused();

private:
    void listen();

    FileDescriptor m_socket;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

/// Whether somebody listens there and does not answer for that long, which is waited for. False for
/// an address of a kind at which one cannot knock.
bool busHangs(const QString &address, std::chrono::milliseconds patience);

/// The socket of an address that names one of this machine's, as connectTo takes it; nothing for
/// other addresses.
std::optional<std::string> busSocket(const QString &address);

} // namespace corvane
