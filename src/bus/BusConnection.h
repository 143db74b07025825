#pragma once

#include "bus/BusProbe.h"

#include <QDBusConnection>
#include <QObject>
#include <QTimer>

#include <memory>

namespace corvane {

/// A connection of its owner's own to the user's session bus. Main thread, which never waits for a
/// bus that hangs. It is made as soon as the event loop runs and the bus answers, and again after
/// the bus went or was not there; none is ever started for it.
class BusConnection : public QObject {
    Q_OBJECT

public:
    /// The name tells it from the process's other connections.
    explicit BusConnection(const QString &name, QObject *parent = nullptr);
    ~BusConnection() override;

    /// While there is none, one that is not connected.
    QDBusConnection &bus() { return m_bus; }

    const QString &address() const { return m_address; }

signals:
    void connected();
    void lost(); ///< Also after each attempt in vain.

private slots:
    void lose();

private:
    void knock();
    void open();

    const QString m_name;
    QString m_address;
    std::unique_ptr<BusProbe> m_knock; ///< Until it is answered.
    QDBusConnection m_bus;
    QTimer m_retry;
};

} // namespace corvane
