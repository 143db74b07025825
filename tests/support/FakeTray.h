#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>

namespace corvane::test {

/// A desktop's tray on a private bus, as far as items can tell: the watcher and a host that reads
/// each new item's picture. It passes for the program whose name it is given, since that is where
/// the watcher's owner is told from.
class FakeTray : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered MEMBER m_hasHost)
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems MEMBER m_items)
    Q_PROPERTY(int ProtocolVersion MEMBER m_version CONSTANT)

public:
    FakeTray(const QString &address, const char *program);
    ~FakeTray() override;

    void setHost(bool present);

    /// Bus names in the order of their registration.
    const QStringList &items() const { return m_items; }

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
    QDBusConnection m_bus;
    QStringList m_items;
    const int m_version = 0;
    bool m_hasHost = true;
};

} // namespace corvane::test
