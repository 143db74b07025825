#pragma once

#include "bus/BusProbe.h"

#include <QDBusConnection>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <memory>

namespace corvane {

/// A private connection to the user's session bus. Main thread, which never waits for a bus that
/// hangs. It is opened on a background job once the event loop runs and the bus answers, and
/// reopened after the bus has ended, and retried while there is none. It never starts a bus.
class BusConnection : public QObject {
    Q_OBJECT

public:
    explicit BusConnection(std::chrono::milliseconds retryInterval = std::chrono::seconds(3));
    ~BusConnection() override;

    /// Not connected before `connected` and after `lost`.
    QDBusConnection &bus() { return m_bus; }

    const QString &address() const { return m_address; }

signals:
    void connected();
    void lost(); ///< Also after each failed attempt.

private slots:
    void close();

private:
    void probe();
    void open();
    void use(const QDBusConnection &bus);

    QString m_address;
    std::unique_ptr<BusProbe> m_probe; ///< Null unless a probe is running.
    QDBusConnection m_bus;
    QTimer m_retry;
};

} // namespace corvane
