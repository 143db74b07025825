#pragma once

#include <QHash>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <set>

class QAction;
class QMenu;

namespace corvane {

/// Properties of one item of the menu: texts and truth values by name.
struct DBusMenuItem {
    int id = 0;
    QVariantMap properties = {};
};

/// Something that the user did at one item, such as a click.
struct DBusMenuEvent {
    int id = 0;
    QString type = {};
};

/// A menu without submenus as the desktop sees it that draws it (com.canonical.dbusmenu), without
/// the bus. Owned by the item whose menu it is; several items may have the same menu, which
/// outlives them. Main thread.
///
/// Emits the menu's aboutToShow and aboutToHide when the desktop opens and closes it. Changes of
/// the actions are sent while it is open here; changes made before are sent when it opens. Requests
/// for unknown ids get empty answers. An id counts once however often a request repeats it, and of
/// a group of events the first 64 are used.
class DBusMenu : public QObject {
    Q_OBJECT

public:
    static constexpr int rootId = 0; ///< Of the menu itself.

    explicit DBusMenu(QMenu &menu, QObject *parent = nullptr);
    ~DBusMenu() override;

    // The requests of the interface, by its names.

    /// The item itself first, then its children; only the named properties, or all if none is.
    QList<DBusMenuItem> layout(int parentId, int depth, const QStringList &names);
    /// Of the present layout.
    uint revision() const { return m_revision; }
    /// Of all items if `ids` is empty.
    QList<DBusMenuItem> groupProperties(const QList<int> &ids, const QStringList &names);
    /// An empty text for a property that the item does not have.
    QVariant itemProperty(int id, const QString &name);
    void takeEvent(const DBusMenuEvent &event);
    /// Returns the ids that are unknown.
    QList<int> takeEvents(const QList<DBusMenuEvent> &events);
    /// Whether the item has changed.
    bool aboutToShow(int id);
    /// Lets the desktop request the whole menu.
    void announceLayout() { emit layoutUpdated(++m_revision); }
    /// Returns the ids of the items that have changed.
    QList<int> aboutToShowGroup(const QList<int> &ids, QList<int> &unknown);

signals:
    void propertiesUpdated(const QList<corvane::DBusMenuItem> &updated);
    void layoutUpdated(uint revision);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void addAction(QAction *action);
    void setOpen(bool open);
    void refresh();
    bool sendChanges();
    bool isKnown(int id) const;
    QVariantMap properties(int id, const QStringList &names) const;

    QMenu &m_menu;
    QHash<int, QAction *> m_actions; ///< By id, from 1 on; never reused.
    int m_lastId = 0;
    uint m_revision = 1;
    std::set<int> m_changed; ///< Ids whose changes have not been sent.
    bool m_isOpen = false;   ///< At this item.
};

/// An action's text in this interface's notation, which marks an access key by an underscore
/// instead of an ampersand.
QString dbusMenuLabel(const QString &actionText);

} // namespace corvane
