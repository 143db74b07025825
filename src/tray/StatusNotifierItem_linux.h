#pragma once

#include "bus/LoopConnection.h"
#include "tray/DBusMenuObject_linux.h"
#include "tray/StatusNotifierPixmap_linux.h"
#include "tray/TrayWaits.h"

#include <QDeadlineTimer>
#include <QPoint>
#include <QTimer>

#include <functional>
#include <memory>

namespace corvane {

/// One item in a desktop's tray, exported over the bus (org.kde.StatusNotifierItem). It has its own
/// connection, so that it can have its own bus name, id and title. Owned by the label; the menu
/// outlives it. The item leaves the tray when this object is deleted. Main thread; no call blocks.
///
/// A change is announced once; the desktop then requests what it wants to show. Without a bus the
/// item does nothing.
class StatusNotifierItem : public QObject {
    Q_OBJECT

public:
    using Pictures = std::function<QList<QImage>()>;

    /// `id` has to be the same in every run: desktops remember an item's place by it.
    StatusNotifierItem(const QString &id, QMenu &menu, const TrayWaits &waits,
                       QObject *parent = nullptr);
    ~StatusNotifierItem() override;

    /// Exports the item over a connection of its own. Called once, before the registration.
    void exportOver(BusHandle bus);

    /// The item's name in lists of items, by which some desktops sort them.
    void showTitle(const QString &title);

    /// `pictures` paints the icon in all sizes; called at the desktop's first request.
    void showPictures(Pictures pictures);
    /// Kept for the desktop's next request.
    void setToolTip(const QString &text) { m_toolTip = text; }
    /// Lets the desktop request the tool tip, if it is a new one.
    void announceToolTip();
    /// A text beside the icon, where the desktop shows one; `widest` is the text to reserve room
    /// for.
    void showLabel(const QString &text, const QString &widest);

    /// Requests that the desktop shows the item.
    void registerAtWatcher();

    /// Whether the desktop has read the item and the watcher's list contains it.
    bool isInTray(const QStringList &listed) const;

signals:
    // Emitted after the desktop has its answer.
    void activated(const QPoint &position); ///< (0, 0) where the desktop sends no position.
    void secondaryActivated();
    void contextMenuRequested(const QPoint &position);
    /// The desktop has finished reading the item, or has not begun in time: the next one may be
    /// registered.
    void settled();

private:
    struct Exported; ///< What the desktop sees.

    const StatusNotifierPixmaps &iconPixmaps();
    void announce(const char *signal, const BusWriter::Write &write = {});
    void announceLabel();
    void announceAll();

    const QString m_id;
    QString m_title;
    QString m_toolTip;
    QString m_announcedToolTip;
    QString m_label;
    QString m_widestLabel;
    Pictures m_paint;
    StatusNotifierPixmaps m_pixmaps; ///< Empty until requested.

    DBusMenuObject m_menu;
    std::unique_ptr<LoopConnection> m_bus; ///< Null until exported.
    const TrayWaits m_waits;
    bool m_wasRead = false;   ///< By the desktop.
    QTimer m_settling;        ///< Runs from the registration until `settled`.
    QDeadlineTimer m_longest; ///< For the desktop's reads, which may never pause.
};

} // namespace corvane
