#include "tray/StatusNotifierItem_linux.h"

#include "bus/BusCall.h"
#include "threads/MainThread.h"
#include "tray/StatusNotifierWatcher_linux.h"
#include "windows/WindowTools.h"

#include <algorithm>

namespace corvane {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

StatusNotifierItem::StatusNotifierItem(const QString &id, QMenu &menu, const TrayWaits &waits,
                                       QObject *parent)
    : QObject(parent),
      m_id(id),
      m_bus(QString()),
      m_menu(menu),
      m_waits(waits)
{
    assertMainThread();
    registerStatusNotifierTypes();
    m_settling.setSingleShot(true);
    connect(&m_settling, &QTimer::timeout, this, &StatusNotifierItem::settled);
}

StatusNotifierItem::~StatusNotifierItem() = default;

void StatusNotifierItem::exportOver(const QDBusConnection &bus)
{
    m_bus = bus;
    m_bus.registerObject(m_menuPath.path(), &m_menu, QDBusConnection::ExportScriptableContents);
    m_bus.registerObject(u"/StatusNotifierItem"_s, this, QDBusConnection::ExportScriptableContents);
}

void StatusNotifierItem::showTitle(const QString &title)
{
    if (title == m_title)
        return;
    m_title = title;
    emit NewTitle();
}

void StatusNotifierItem::showPictures(Pictures pictures)
{
    m_paint = std::move(pictures);
    m_pixmaps.clear();
    emit NewIcon();
}

void StatusNotifierItem::announceToolTip()
{
    if (m_toolTip == m_announcedToolTip)
        return;
    m_announcedToolTip = m_toolTip;
    emit NewToolTip();
}

void StatusNotifierItem::showLabel(const QString &text, const QString &widest)
{
    if (text == m_label && widest == m_widestLabel)
        return;
    m_label = text;
    m_widestLabel = widest;
    emit XAyatanaNewLabel(text, widest);
}

void StatusNotifierItem::registerAtWatcher()
{
    QDBusMessage call = StatusNotifierWatcher::methodCall(u"RegisterStatusNotifierItem"_s);
    call << m_bus.baseService();
    BusCall::send(m_bus, call, this, [this](const QDBusMessage &answer) {
        if (!BusCall::isReply(answer) && m_settling.isActive())
            m_settling.start(0ms);
    });
    m_settling.start(m_waits.read);
    m_longest = QDeadlineTimer(m_waits.read);
}

bool StatusNotifierItem::isInTray(const QStringList &listed) const
{
    // One known watcher writes an @ between the name and the path.
    const QString name = m_bus.baseService();
    return m_wasRead && std::ranges::any_of(listed, [&name](const QString &item) {
               return item == name || item.startsWith(name + u'/') || item.startsWith(name + u'@');
           });
}

void StatusNotifierItem::Activate(int x, int y)
{
    emit activated(QPoint(x, y));
}

void StatusNotifierItem::SecondaryActivate(int, int)
{
    emit secondaryActivated();
}

void StatusNotifierItem::XAyatanaSecondaryActivate(uint)
{
    emit secondaryActivated();
}

void StatusNotifierItem::ContextMenu(int x, int y)
{
    emit contextMenuRequested(QPoint(x, y));
}

void StatusNotifierItem::Scroll(int, const QString &) { }

void StatusNotifierItem::ProvideXdgActivationToken(const QString &token)
{
    useActivationToken(token.toUtf8());
}

StatusNotifierPixmaps StatusNotifierItem::iconPixmaps()
{
    if (m_pixmaps.isEmpty() && m_paint) {
        for (const QImage &picture : m_paint())
            m_pixmaps.append(StatusNotifierPixmap::from(picture));
    }
    m_wasRead = true;
    if (m_settling.isActive())
        m_settling.start(
            std::min(m_waits.quiet, std::chrono::milliseconds(m_longest.remainingTime())));
    return m_pixmaps;
}

/// The text is the title because some desktops show only that.
StatusNotifierToolTip StatusNotifierItem::toolTip() const
{
    return {.title = m_toolTip};
}

} // namespace corvane
