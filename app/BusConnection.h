#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QTimer>

namespace corvane {

/// A connection of its owner's own to the user's session bus. Main thread. It is made as soon as
/// the event loop runs, and again after the bus went or was not there; none is ever started for it.
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
    void open();
    void lose();

private:
    const QString m_name;
    QString m_address;
    QDBusConnection m_bus;
    QTimer m_retry;
};

} // namespace corvane
