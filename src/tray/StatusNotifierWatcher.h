#pragma once

#include "bus/BusCall.h"
#include "bus/BusConnection.h"
#include "tray/TrayHost.h"

#include <QObject>

#include <functional>
#include <memory>
#include <optional>

class QDBusServiceWatcher;

namespace corvane {

/// Looks whether the desktop has a tray that takes items over the bus, and what kind it is. Owned
/// by the label; main thread. It only asks and listens, and waits for nobody: a bus or a tray that
/// comes late, goes or comes again is told by hostChanged.
class StatusNotifierWatcher : public QObject {
    Q_OBJECT

public:
    explicit StatusNotifierWatcher(QObject *parent = nullptr);
    ~StatusNotifierWatcher() override;

    /// Whether the question is answered; a tray that hangs leaves it open.
    bool isKnown() const { return m_isKnown; }

    /// Absent: no tray now, as far as it is known.
    const std::optional<TrayHost> &host() const { return m_host; }

    /// The bus on which the tray is.
    const QString &busAddress() const { return m_connection.address(); }

    /// Asks once which items the tray has; itemsListed is the answer, if there is one.
    void askForItems();

    /// A call of the tray's own object, which starts no program.
    static QDBusMessage methodCall(const QString &method);

signals:
    /// Another host, the same one started anew, or none.
    void hostChanged();

    /// Each as its bus name and, in one form or another, its path.
    void itemsListed(const QStringList &items);

private slots:
    void askForHost();

private:
    void watchBus();
    void loseBus();
    void ask(const QDBusMessage &call, const BusCall::ReplyHandler &onReply);
    void askForProperty(const QString &name, const std::function<void(const QVariant &)> &use);
    void lookUp(const QString &owner);
    void publish(const std::optional<TrayHost> &host);

    BusConnection m_connection;
    std::unique_ptr<QDBusServiceWatcher> m_nameWatcher;
    QString m_owner; ///< Of the tray's name; empty: nobody.
    TrayHost m_kind; ///< What the owner is.
    std::optional<TrayHost> m_host;
    bool m_isKnown = false;
};

} // namespace corvane
