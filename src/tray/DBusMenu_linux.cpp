#include "tray/DBusMenu_linux.h"

#include "threads/MainThread.h"

#include <QActionEvent>
#include <QMenu>
#include <QSet>

#include <algorithm>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// Of one group; a desktop sends a few. Each may start a command or a message.
constexpr qsizetype mostEvents = 64;

/// Each id once, where it comes first: the answer to an id is many times as long as the id.
QList<int> withoutRepeats(const QList<int> &ids)
{
    QSet<int> seen;
    QList<int> once;
    for (const int id : ids) {
        if (seen.contains(id))
            continue;
        seen.insert(id);
        once.append(id);
    }
    return once;
}

} // namespace

DBusMenu::DBusMenu(QMenu &menu, QObject *parent) : QObject(parent), m_menu(menu)
{
    assertMainThread();
    for (QAction *action : menu.actions())
        addAction(action);
    menu.installEventFilter(this);
}

DBusMenu::~DBusMenu()
{
    setOpen(false); // A desktop that crashed has not sent the closing event.
}

QList<DBusMenuItem> DBusMenu::layout(int parentId, int depth, const QStringList &names)
{
    refresh();
    QList<DBusMenuItem> items{{.id = parentId, .properties = properties(parentId, names)}};
    if (parentId == rootId && depth != 0) {
        for (QAction *action : m_menu.actions()) {
            const int id = m_actions.key(action);
            items.append({.id = id, .properties = properties(id, names)});
        }
    }
    return items;
}

QList<DBusMenuItem> DBusMenu::groupProperties(const QList<int> &ids, const QStringList &names)
{
    refresh();
    QList<int> wanted = withoutRepeats(ids);
    if (wanted.isEmpty()) {
        wanted = m_actions.keys();
        wanted.prepend(rootId);
    }
    QList<DBusMenuItem> items;
    for (const int id : wanted) {
        if (isKnown(id))
            items.append({.id = id, .properties = properties(id, names)});
    }
    return items;
}

QVariant DBusMenu::itemProperty(int id, const QString &name)
{
    refresh();
    return properties(id, {}).value(name, QString());
}

void DBusMenu::takeEvent(const DBusMenuEvent &event)
{
    if (event.type == "opened"_L1 && event.id == rootId) {
        setOpen(true);
    } else if (event.type == "closed"_L1 && event.id == rootId) {
        setOpen(false);
    } else if (event.type == "clicked"_L1) {
        QAction *action = m_actions.value(event.id);
        // Queued, so that the desktop gets its answer before the command runs.
        if (action && action->isEnabled())
            QMetaObject::invokeMethod(action, &QAction::trigger, Qt::QueuedConnection);
    }
}

QList<int> DBusMenu::takeEvents(const QList<DBusMenuEvent> &events)
{
    QList<int> unknown;
    for (const DBusMenuEvent &one : events.first(std::min(events.size(), mostEvents))) {
        if (isKnown(one.id))
            takeEvent(one);
        else
            unknown.append(one.id);
    }
    return unknown;
}

bool DBusMenu::aboutToShow(int id)
{
    if (id != rootId)
        return false;
    const uint revision = m_revision;
    refresh();
    const bool haveChanged = sendChanges();
    return haveChanged || m_revision != revision;
}

QList<int> DBusMenu::aboutToShowGroup(const QList<int> &ids, QList<int> &unknown)
{
    QList<int> updated;
    for (const int id : withoutRepeats(ids)) {
        if (!isKnown(id))
            unknown.append(id);
        else if (aboutToShow(id))
            updated.append(id);
    }
    return updated;
}

bool DBusMenu::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ActionAdded || event->type() == QEvent::ActionRemoved) {
        QAction *action = static_cast<QActionEvent *>(event)->action();
        if (event->type() == QEvent::ActionAdded)
            addAction(action);
        else
            m_actions.remove(m_actions.key(action));
        announceLayout();
    }
    return QObject::eventFilter(watched, event);
}

void DBusMenu::addAction(QAction *action)
{
    const int id = ++m_lastId;
    m_actions.insert(id, action);
    connect(action, &QAction::changed, this, [this, id] {
        // Rows that change together are sent in one message.
        if (m_isOpen && m_changed.empty())
            QMetaObject::invokeMethod(this, &DBusMenu::sendChanges, Qt::QueuedConnection);
        m_changed.insert(id);
    });
}

void DBusMenu::setOpen(bool open)
{
    if (open == m_isOpen)
        return;
    if (open) {
        emit m_menu.aboutToShow();
        sendChanges();
    } else {
        emit m_menu.aboutToHide();
    }
    m_isOpen = open;
}

/// Updates the texts of a closed menu.
void DBusMenu::refresh()
{
    if (m_isOpen || m_menu.isVisible())
        return;
    emit m_menu.aboutToShow();
    emit m_menu.aboutToHide();
}

/// Whether there were changes to send.
bool DBusMenu::sendChanges()
{
    QList<DBusMenuItem> updated;
    for (const int id : std::exchange(m_changed, {})) {
        if (m_actions.contains(id))
            updated.append({.id = id, .properties = properties(id, {})});
    }
    if (updated.isEmpty())
        return false;
    emit propertiesUpdated(updated);
    return true;
}

bool DBusMenu::isKnown(int id) const
{
    return id == rootId || m_actions.contains(id);
}

/// The named properties; all of them if `names` is empty.
QVariantMap DBusMenu::properties(int id, const QStringList &names) const
{
    QVariantMap all;
    if (id == rootId) {
        all[u"children-display"_s] = u"submenu"_s;
    } else if (const QAction *action = m_actions.value(id)) {
        all[u"visible"_s] = action->isVisible();
        if (action->isSeparator()) {
            all[u"type"_s] = u"separator"_s;
        } else {
            all[u"label"_s] = dbusMenuLabel(action->text());
            all[u"enabled"_s] = action->isEnabled();
        }
    }
    if (!names.isEmpty())
        all.removeIf([&names](const auto &property) { return !names.contains(property.key()); });
    return all;
}

QString dbusMenuLabel(const QString &actionText)
{
    QString label;
    for (qsizetype index = 0; index < actionText.size(); ++index) {
        const QChar character = actionText[index];
        if (character == u'_') {
            label += "__"_L1;
        } else if (character != u'&') {
            label += character;
        } else if (actionText.mid(index + 1, 1) == "&"_L1) {
            label += character;
            ++index;
        } else {
            label += u'_';
        }
    }
    return label;
}

} // namespace corvane
