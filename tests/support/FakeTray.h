#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QStringList>

#include <chrono>

namespace corvane::test {

/// A desktop's tray on a private bus: a watcher, and a host that reads each new item's icon. It
/// sets this process's short name to `program`, by which items recognise the kind of tray.
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

    /// Delays the reply to each registration, and the read of the item after it.
    void setDelay(std::chrono::milliseconds delay) { m_delay = delay; }

    /// Accepts and at once loses `count` items from the registration with this number (from 1) on.
    void loseRegistrations(int number, int count = 1);

    /// Answers registrations with an error, but reads the items.
    void refuseRegistrations() { m_refuses = true; }

    /// The text between name and path in the list of items.
    void setSeparator(const QString &separator) { m_separator = separator; }

    /// Bus names in the order of their registration.
    const QStringList &items() const { return m_items; }

    int registrations() const { return m_registrations; }

    /// The highest number of registrations that waited for a reply at the same time.
    int mostPending() const { return m_mostPending; }

    /// How often the list of items was requested.
    int listings() const { return m_listings; }

    /// Reads the pictures of all items without waiting for them.
    void readPictures();

    /// Replies of one item, for which they wait; invalid or empty after an error.
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
    int m_pending = 0;
    int m_mostPending = 0;
    bool m_refuses = false;
    int m_firstLost = 0;
    int m_lost = 0;
    int m_registrations = 0;
    int m_listings = 0;
    const int m_version = 0;
    bool m_hasHost = true;
};

} // namespace corvane::test
