#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QStringList>

#include <chrono>

namespace corvane::test {

/// A desktop's tray on a private bus, as far as items can tell: the watcher and a host that reads
/// each new item's picture. It passes for the program whose name it is given, since that is where
/// the watcher's owner is told from.
class FakeTray : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered MEMBER m_hasHost)
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ listItems)
    Q_PROPERTY(int ProtocolVersion MEMBER m_version CONSTANT)

public:
    FakeTray(const QString &address, const char *program);
    ~FakeTray() override;

    void setHost(bool present);

    /// Answers registrations so much later, and looks at the items only then.
    void setDelay(std::chrono::milliseconds delay) { m_delay = delay; }

    /// Takes the registration with this number (from 1) and the next `count - 1`, and has lost them
    /// at once.
    void loseRegistrations(int number, int count = 1);

    /// Answers registrations with an error, though it looks at the items.
    void refuseRegistrations() { m_refuses = true; }

    /// What stands between name and path where it lists its items.
    void setSeparator(const QString &separator) { m_separator = separator; }

    /// Bus names in the order of their registration.
    const QStringList &items() const { return m_items; }

    int registrations() const { return m_registrations; }

    /// How often it was asked which items it has.
    int listings() const { return m_listings; }

    /// Answers of one item, waited for; nothing for an error.
    QVariant property(const QString &item, const QString &name);
    QVariantList call(const QString &item, const QString &path, const QString &interface,
                      const QString &method, const QVariantList &arguments = {});

    static constexpr auto itemInterface = "org.kde.StatusNotifierItem";
    static constexpr auto menuInterface = "com.canonical.dbusmenu";

public slots:
    Q_SCRIPTABLE void RegisterStatusNotifierItem(const QString &item);

signals:
    Q_SCRIPTABLE void StatusNotifierHostRegistered();
    Q_SCRIPTABLE void StatusNotifierHostUnregistered();

private:
    QStringList listItems();
    void take(const QString &item, int number);

    QDBusConnection m_bus;
    QDBusServiceWatcher m_nameWatcher;
    QStringList m_items;
    QString m_separator;
    std::chrono::milliseconds m_delay{0};
    bool m_refuses = false;
    int m_firstLost = 0;
    int m_lost = 0;
    int m_registrations = 0;
    int m_listings = 0;
    const int m_version = 0;
    bool m_hasHost = true;
};

} // namespace corvane::test
