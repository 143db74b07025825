#pragma once

#include "bus/BusHandshake.h"

#include <QObject>
#include <QString>

#include <chrono>
#include <memory>

class QSocketNotifier;

namespace corvane {

/// Finds out whether a bus answers, without blocking. Main thread. Emits exactly one of the two
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
    void follow();

    BusHandshake m_handshake;
    std::unique_ptr<QSocketNotifier> m_notifier; ///< Null unless something is waited for.
};

/// Whether something listens at the address and gives no answer within the time-out, or the address
/// is of a kind that cannot be probed; blocks until it is known.
bool busHangs(const QString &address, std::chrono::milliseconds timeout);

} // namespace corvane
