#pragma once

#include "tray/DBusMenuTypes.h"

#include <QHash>
#include <QObject>

#include <set>

class QAction;
class QMenu;

namespace corvane {

/// A menu without submenus for the desktop to draw, over the bus (com.canonical.dbusmenu). Owned by
/// the item whose menu it is, which exports it; the menu outlives it. Main thread.
///
/// The menu's aboutToShow and aboutToHide tell it when the desktop opens and closes it. Changes of
/// its actions are sent while it is open; what changed meanwhile is sent when it opens. Unknown ids
/// answer with nothing.
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
    // Names and types of the interface; QtDBus needs the types in full.
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
    void adopt(QAction *action);
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
    QHash<int, QAction *> m_actions; ///< By id; 0 is the menu itself. Ids are never used again.
    int m_lastId = 0;
    uint m_revision = 1;
    std::set<int> m_changed; ///< Not told yet.
    bool m_isOpen = false;
};

/// An action's text as this interface writes it: an access key is marked by an underscore, not by
/// an ampersand.
QString dbusMenuLabel(const QString &actionText);

} // namespace corvane
