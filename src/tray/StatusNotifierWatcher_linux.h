#pragma once

#include "bus/BusCall.h"
#include "bus/BusConnection.h"
#include "bus/LoopConnection.h"
#include "tray/TrayHost.h"

#include <QObject>

#include <functional>
#include <memory>
#include <optional>

class QDBusServiceWatcher;

namespace corvane {

/// Finds out whether the desktop has a tray that accepts items over the bus, and which kind it is.
/// Owned by the label; main thread. No call blocks: when a bus or a tray starts late, ends or
/// restarts, hostChanged is emitted.
class StatusNotifierWatcher : public QObject {
    Q_OBJECT

public:
    explicit StatusNotifierWatcher(QObject *parent = nullptr);
    ~StatusNotifierWatcher() override;

    /// Whether it is known if there is a tray; never while a tray hangs.
    bool isKnown() const { return m_isKnown; }

    /// Absent while there is no tray, or none is known.
    const std::optional<TrayHost> &host() const { return m_host; }

    /// The address of the bus that the tray is on.
    const QString &busAddress() const { return m_connection.address(); }

    /// Requests the tray's list of items once; a reply is emitted as itemsListed.
    void requestItems();

    /// The tray's bus name, and the object that items register at.
    static constexpr auto service = "org.kde.StatusNotifierWatcher";
    static constexpr BusInterface interface {
        "/StatusNotifierWatcher", service
    };

signals:
    /// The host is another one now, has restarted or is gone.
    void hostChanged();

    /// Each item by its bus name, followed by its path in a form that differs between watchers.
    void itemsListed(const QStringList &items);

private slots:
    void requestHost();

private:
    void onConnected();
    void onLost();
    void ask(const QDBusMessage &call, const BusCall::ReplyHandler &onReply);
    void requestProperty(const QString &name, const std::function<void(const QVariant &)> &onValue);
    void setOwner(const QString &owner);
    void publish(const std::optional<TrayHost> &host);

    BusConnection m_connection;
    std::unique_ptr<QDBusServiceWatcher> m_nameWatcher;
    QString m_owner; ///< Unique bus name of the watcher's owner; empty if there is none.
    TrayHost m_kind; ///< The kind of bar that the owner is.
    std::optional<TrayHost> m_host;
    bool m_isKnown = false;
    bool m_isAsking = false; ///< Whether the owner has a host; one question at a time.
    bool m_hasToAsk = false; ///< Again, after the present question.
};

} // namespace corvane
