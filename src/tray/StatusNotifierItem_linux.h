#pragma once

#include "tray/DBusMenu_linux.h"
#include "tray/StatusNotifierTypes_linux.h"
#include "tray/TrayWaits.h"

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QDeadlineTimer>
#include <QPoint>
#include <QTimer>

#include <functional>

namespace corvane {

/// One item in a desktop's tray, exported over the bus (org.kde.StatusNotifierItem). It has its own
/// connection, so that it can have its own bus name, id and title. Owned by the label; the menu
/// outlives it. The item leaves the tray when this object is deleted. Main thread; no call blocks.
///
/// A change is announced once; the desktop then requests what it wants to show. Without a bus the
/// item does nothing.
class StatusNotifierItem : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category MEMBER m_category CONSTANT)
    Q_PROPERTY(QString Id MEMBER m_id CONSTANT)
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString Status MEMBER m_status CONSTANT)
    Q_PROPERTY(int WindowId MEMBER m_windowId CONSTANT)
    Q_PROPERTY(QString IconThemePath MEMBER m_none CONSTANT)
    Q_PROPERTY(QString IconName MEMBER m_none CONSTANT)
    Q_PROPERTY(corvane::StatusNotifierPixmaps IconPixmap READ iconPixmaps)
    Q_PROPERTY(QString IconAccessibleDesc READ description)
    Q_PROPERTY(QString OverlayIconName MEMBER m_none CONSTANT)
    Q_PROPERTY(corvane::StatusNotifierPixmaps OverlayIconPixmap MEMBER m_noPixmaps CONSTANT)
    Q_PROPERTY(QString AttentionIconName MEMBER m_none CONSTANT)
    Q_PROPERTY(corvane::StatusNotifierPixmaps AttentionIconPixmap MEMBER m_noPixmaps CONSTANT)
    Q_PROPERTY(QString AttentionMovieName MEMBER m_none CONSTANT)
    Q_PROPERTY(corvane::StatusNotifierToolTip ToolTip READ toolTip)
    Q_PROPERTY(bool ItemIsMenu MEMBER m_itemIsMenu CONSTANT)
    Q_PROPERTY(QDBusObjectPath Menu MEMBER m_menuPath CONSTANT)
    Q_PROPERTY(QString XAyatanaLabel MEMBER m_label CONSTANT)
    Q_PROPERTY(QString XAyatanaLabelGuide MEMBER m_widestLabel CONSTANT)

public:
    using Pictures = std::function<QList<QImage>()>;

    /// `id` has to be the same in every run: desktops remember an item's place by it.
    StatusNotifierItem(const QString &id, QMenu &menu, const TrayWaits &waits,
                       QObject *parent = nullptr);
    ~StatusNotifierItem() override;

    /// Exports the item over a connection of its own. Called once, before the registration.
    void exportOver(const QDBusConnection &bus);

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

public slots:
    // The interface's own names.
    Q_SCRIPTABLE void Activate(int x, int y);
    Q_SCRIPTABLE void SecondaryActivate(int x, int y);
    Q_SCRIPTABLE void XAyatanaSecondaryActivate(uint time);
    Q_SCRIPTABLE void ContextMenu(int x, int y);
    Q_SCRIPTABLE void Scroll(int delta, const QString &orientation);
    Q_SCRIPTABLE void ProvideXdgActivationToken(const QString &token);

signals:
    Q_SCRIPTABLE void NewTitle();
    Q_SCRIPTABLE void NewIcon();
    Q_SCRIPTABLE void NewAttentionIcon();
    Q_SCRIPTABLE void NewOverlayIcon();
    Q_SCRIPTABLE void NewToolTip();
    Q_SCRIPTABLE void NewStatus(const QString &status);
    Q_SCRIPTABLE void XAyatanaNewLabel(const QString &label, const QString &guide);

    void activated(const QPoint &position); ///< (0, 0) where the desktop sends no position.
    void secondaryActivated();
    void contextMenuRequested(const QPoint &position);
    /// The desktop has finished reading the item, or has not begun in time: the next one may be
    /// registered.
    void settled();

private:
    StatusNotifierPixmaps iconPixmaps();
    QString title() const { return m_title; }
    QString description() const { return m_toolTip; }
    StatusNotifierToolTip toolTip() const;

    const QString m_category = QStringLiteral("Hardware");
    const QString m_status = QStringLiteral("Active");
    const QString m_none = {};
    const StatusNotifierPixmaps m_noPixmaps = {};
    const int m_windowId = 0;
    const bool m_itemIsMenu = false;
    const QDBusObjectPath m_menuPath{QStringLiteral("/MenuBar")};

    const QString m_id;
    QString m_title;
    QString m_toolTip;
    QString m_announcedToolTip;
    QString m_label;
    QString m_widestLabel;
    Pictures m_paint;
    StatusNotifierPixmaps m_pixmaps; ///< Empty until requested.

    QDBusConnection m_bus;
    DBusMenu m_menu;
    const TrayWaits m_waits;
    bool m_wasRead = false;   ///< By the desktop.
    QTimer m_settling;        ///< Runs from the registration until `settled`.
    QDeadlineTimer m_longest; ///< For the desktop's reads, which may never pause.
};

} // namespace corvane
