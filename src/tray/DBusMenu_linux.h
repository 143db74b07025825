#pragma once

#include "tray/DBusMenuTypes_linux.h"

#include <QHash>
#include <QObject>

#include <set>

class QAction;
class QMenu;

namespace corvane {

/// Exports a menu without submenus over the bus, for the desktop to draw (com.canonical.dbusmenu).
/// Owned by the item that exports it; several items may export the same menu, which outlives them.
/// Main thread.
///
/// Emits the menu's aboutToShow and aboutToHide when the desktop opens and closes it. Changes of
/// the actions are sent while it is open here; changes made before are sent when it opens. Requests
/// for unknown ids get empty answers. An id counts once however often a request repeats it, and of
/// a group of events the first 64 are used.
class DBusMenu : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_PROPERTY(uint Version MEMBER m_version CONSTANT)
    Q_PROPERTY(QString TextDirection MEMBER m_textDirection CONSTANT)
    Q_PROPERTY(QString Status MEMBER m_status CONSTANT)
    Q_PROPERTY(QStringList IconThemePath MEMBER m_iconThemePath CONSTANT)

public:
    explicit DBusMenu(QMenu &menu, QObject *parent = nullptr);
    ~DBusMenu() override;

public slots:
    // The interface's own names and types; QtDBus needs the types fully qualified.
    Q_SCRIPTABLE uint GetLayout(int parentId, int depth, const QStringList &names,
                                corvane::DBusMenuLayout &layout);
    Q_SCRIPTABLE QList<corvane::DBusMenuProperties> GetGroupProperties(const QList<int> &ids,
                                                                       const QStringList &names);
    Q_SCRIPTABLE QDBusVariant GetProperty(int id, const QString &name);
    Q_SCRIPTABLE void Event(int id, const QString &type, const QDBusVariant &data, uint time);
    Q_SCRIPTABLE QList<int> EventGroup(const QList<corvane::DBusMenuEvent> &events);
    Q_SCRIPTABLE bool AboutToShow(int id);
    Q_SCRIPTABLE QList<int> AboutToShowGroup(const QList<int> &ids, QList<int> &unknown);

signals:
    Q_SCRIPTABLE void ItemsPropertiesUpdated(const QList<corvane::DBusMenuProperties> &updated,
                                             const QList<corvane::DBusMenuRemoved> &removed);
    Q_SCRIPTABLE void LayoutUpdated(uint revision, int parent);
    Q_SCRIPTABLE void ItemActivationRequested(int id, uint time);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void addAction(QAction *action);
    void setOpen(bool open);
    void refresh();
    bool sendChanges();
    bool isKnown(int id) const;
    QVariantMap properties(int id, const QStringList &names) const;

    uint m_version = 3;
    QString m_textDirection = QStringLiteral("ltr");
    QString m_status = QStringLiteral("normal");
    QStringList m_iconThemePath = {};

    QMenu &m_menu;
    QHash<int, QAction *> m_actions; ///< By id; 0 is the menu itself. Ids are not reused.
    int m_lastId = 0;
    uint m_revision = 1;
    std::set<int> m_changed; ///< Ids whose changes have not been sent.
    bool m_isOpen = false;   ///< At this item.
};

/// An action's text in this interface's notation, which marks an access key by an underscore
/// instead of an ampersand.
QString dbusMenuLabel(const QString &actionText);

} // namespace corvane
