#pragma once

#include "bus/LoopConnection.h"
#include "tray/TrayHost.h"
#include "tray/TrayWaits.h"
#include "ui/MetricText.h"

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
/// menu, which outlives them. Nothing is sent while the label's text stays the same; new tool tips
/// are announced with every third sample. Main thread.
///
/// A square item belongs to a place in the bar, not to a quantity. When the label gets a number
/// more or less, only the item registered last comes or goes, at the end where this host puts new
/// items, and the others show their new numbers without leaving the bar.
class NotifierItems : public QObject {
    Q_OBJECT

public:
    NotifierItems(const QString &busAddress, const TrayHost &host, QMenu &menu,
                  const TrayWaits &waits, QObject *parent = nullptr);
    ~NotifierItems() override;

    /// Registers new items at the tray, one after the other, once their connections are open.
    void show(const MetricValues &current);

    /// Whether the desktop has read every item and the watcher's list contains them all.
    bool areInTray(const QStringList &listed) const;

signals:
    /// Emitted some time after the last registration, when the watcher's list can be checked.
    void settled();
    void activated(const QPoint &position); ///< (0, 0) where the desktop sends no position.
    void secondaryActivated();

private:
    void setItemCount(std::size_t count);
    void addItem(const QString &id);
    void popUpMenu(const QPoint &position);
    void showText(const LabelNumbers &numbers);
    void showWidePicture(const LabelNumbers &numbers);
    void showSquares(const LabelNumbers &numbers);
    void registerNext();
    void registerOver(BusHandle bus);

    const QString m_busAddress;
    const TrayHost m_host;
    QMenu &m_menu;
    const TrayWaits m_waits;
    std::vector<std::unique_ptr<StatusNotifierItem>> m_items; ///< In the order of registration.
    std::size_t m_registered = 0;
    bool m_isOpening = false;     ///< The connection of the next item.
    bool m_isRegistering = false; ///< The desktop has not yet read the newest item.
    LabelNumbers m_numbers = {};  ///< Shown now; empty before the first.
    unsigned m_shows = 0;
    QTimer m_settling; ///< Runs after the last registration.
};

} // namespace corvane
