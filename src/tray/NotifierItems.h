#pragma once

#include "tray/TrayHost.h"
#include "ui/MetricText.h"

#include <QObject>
#include <QPoint>
#include <QTimer>

#include <memory>
#include <vector>

class QAction;

namespace corvane {

class MetricMenu;
class StatusNotifierItem;

/// The label as items on the bus, in the form that this host can show. Made by the label when the
/// host appears, gone with it; main thread. Nothing is sent while the label's text stays the same.
class NotifierItems : public QObject {
    Q_OBJECT

public:
    NotifierItems(const QString &busAddress, const TrayHost &host, const QList<QAction *> &commands,
                  QObject *parent = nullptr);
    ~NotifierItems() override;

    /// The first call puts the items into the tray, one after the other.
    void show(const SystemMetrics &current);

    /// Whether all of them are among what the watcher says to have, and were looked at.
    bool areTaken(const QStringList &taken) const;

signals:
    /// Once, some time after the last item was put into the tray: time to look whether they are
    /// there.
    void settled();
    void activated(const QPoint &position); ///< (0, 0) where the desktop does not tell.
    void secondaryActivated();

private:
    struct Item {
        std::size_t number = 0; ///< The one that it shows; of no meaning where it shows all.
        std::unique_ptr<MetricMenu> menu;
        std::unique_ptr<StatusNotifierItem> notifier; ///< Shows the menu, so it goes first.
    };
    void addItem(const QString &id, const QString &title, const QList<QAction *> &commands);
    void showFace(Item &item, const LabelNumbers &numbers);
    void registerNext();

    const QString m_busAddress;
    const TrayHost m_host;
    std::vector<Item> m_items; ///< From left to right.
    std::size_t m_registered = 0;
    LabelNumbers m_numbers = {};
    QTimer m_settling; ///< Runs after the last registration.
};

} // namespace corvane
