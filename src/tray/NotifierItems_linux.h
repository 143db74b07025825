#pragma once

#include "tray/TrayHost.h"
#include "tray/TrayWaits.h"
#include "ui/MetricText.h"

#include <QDBusConnection>
#include <QObject>
#include <QPoint>
#include <QTimer>

#include <memory>
#include <vector>

class QMenu;

namespace corvane {

class StatusNotifierItem;

/// The label as items on the bus, in the form that this host can show. Owned by the label, which
/// creates it when the host appears and deletes it with the host. All items export the label's one
/// menu, which outlives them. Nothing is sent while the label's text stays the same. Main thread.
class NotifierItems : public QObject {
    Q_OBJECT

public:
    NotifierItems(const QString &busAddress, const TrayHost &host, QMenu &menu,
                  const TrayWaits &waits, QObject *parent = nullptr);
    ~NotifierItems() override;

    /// Registers the items at the tray, one after the other, once their connections are open.
    void show(const MetricValues &current);

    /// Whether the desktop has read every item and the watcher's list contains them all.
    bool areInTray(const QStringList &listed) const;

signals:
    /// Emitted once, some time after the last registration, when the watcher's list can be checked.
    void settled();
    void activated(const QPoint &position); ///< (0, 0) where the desktop sends no position.
    void secondaryActivated();

private:
    struct Item {
        std::size_t number = 0; ///< Index of the number that it shows; unused where it shows all.
        std::unique_ptr<StatusNotifierItem> notifier;
    };
    void addItem(const QString &id, const QString &title);
    void openConnections();
    void exportItems(const std::vector<QDBusConnection> &connections);
    void popUpMenu(const QPoint &position);
    void updatePicture(Item &item, const LabelNumbers &numbers);
    void registerNext();

    const QString m_busAddress;
    const TrayHost m_host;
    QMenu &m_menu;
    const TrayWaits m_waits;
    std::vector<Item> m_items; ///< From left to right.
    bool m_isExported = false;
    std::size_t m_registered = 0;
    LabelNumbers m_numbers = {};
    QTimer m_settling; ///< Runs after the last registration.
};

} // namespace corvane
