#include "threads/MainThread.h"
#include "tray/MetricMenu.h"
#include "tray/NotifierItems_linux.h"
#include "tray/StatusNotifierWatcher_linux.h"
#include "tray/TrayAdvice.h"
#include "tray/TrayIcons_linux.h"
#include "tray/TrayLabel.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <QSystemTrayIcon>
#include <QTimer>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;
/// How often the items are created again for a tray that has lost some.
constexpr int maxRenewals = 2;

/// The point of the click in Qt's coordinates. Desktops send it in device pixels, or not at all.
QPoint panelAnchor(const QPoint &position)
{
    const bool isUsable = !position.isNull() && QGuiApplication::screenAt(position)
        && QGuiApplication::primaryScreen()->devicePixelRatio() == 1;
    return isUsable ? position : QCursor::pos();
}

} // namespace

struct TrayLabel::Bar {
    Bar(TrayLabel &owner, const QList<QAction *> &ofMenu, const TrayWaits &ofDesktop)
        : label(owner),
          commands(ofMenu),
          waits(ofDesktop)
    {
    }

    void followHost();
    void createItems();
    void checkItems(const QStringList &listed);
    void useXEmbed();

    QMenu &sharedMenu();

    TrayLabel &label;
    const QList<QAction *> commands;
    const TrayWaits waits;
    MetricValues current = SystemMetrics::placeholder();
    /// Shared by all items and icons, which are deleted before it; null until one exists.
    std::unique_ptr<MetricMenu> menu;
    StatusNotifierWatcher watcher;
    QTimer missing;                       ///< Runs after the host went away.
    std::unique_ptr<NotifierItems> items; ///< Exist while there is a host.
    int renewals = 0;                     ///< How often the items were created again for this host.
    std::unique_ptr<TrayIcons> icons;     ///< Exist on X11 while there is no host.
};

TrayLabel::TrayLabel(const QList<QAction *> &commands, QObject *parent, const TrayWaits &waits)
    : QObject(parent),
      m_bar(std::make_unique<Bar>(*this, commands, waits))
{
    assertMainThread();
    Bar *bar = m_bar.get();
    bar->missing.setSingleShot(true);
    bar->missing.setInterval(waits.tray);
    connect(&bar->missing, &QTimer::timeout, this, [bar] { bar->useXEmbed(); });
    connect(&bar->watcher, &StatusNotifierWatcher::hostChanged, this, [bar] { bar->followHost(); });
    connect(&bar->watcher, &StatusNotifierWatcher::itemsListed, this,
            [bar](const QStringList &listed) { bar->checkItems(listed); });
    QTimer::singleShot(waits.tray, this, [this, bar] {
        bar->useXEmbed();
        if (!isAvailable())
            emit trayIsMissing(trayAdviceForSession());
    });
}

TrayLabel::~TrayLabel() = default;

bool TrayLabel::isAvailable() const
{
    return m_bar->items || (m_bar->icons && QSystemTrayIcon::isSystemTrayAvailable());
}

void TrayLabel::show(const SystemMetrics &current)
{
    m_bar->current = current;
    if (m_bar->menu)
        m_bar->menu->show(current);
    if (m_bar->items)
        m_bar->items->show(current);
    if (m_bar->icons)
        m_bar->icons->show(current);
}

void TrayLabel::Bar::followHost()
{
    items.reset();
    if (!watcher.host()) {
        missing.start();
        return;
    }
    missing.stop();
    icons.reset();
    renewals = 0;
    createItems();
}

QMenu &TrayLabel::Bar::sharedMenu()
{
    if (!menu) {
        menu = std::make_unique<MetricMenu>(commands);
        menu->show(current);
    }
    return *menu;
}

void TrayLabel::Bar::createItems()
{
    items =
        std::make_unique<NotifierItems>(watcher.busAddress(), *watcher.host(), sharedMenu(), waits);
    connect(items.get(), &NotifierItems::activated, &label,
            [this](const QPoint &position) { emit label.activated(panelAnchor(position)); });
    connect(items.get(), &NotifierItems::secondaryActivated, &label,
            &TrayLabel::openWindowRequested);
    connect(items.get(), &NotifierItems::settled, &watcher, &StatusNotifierWatcher::requestItems);
    items->show(current);
}

/// Creates all items again where the tray lost one: a single item would be added at the end.
void TrayLabel::Bar::checkItems(const QStringList &listed)
{
    if (!items || items->areInTray(listed) || renewals == maxRenewals)
        return;
    ++renewals;
    createItems();
}

/// Qt's icons call the tray on the bus too and block until it answers, so they are created only
/// once it is known that there is none.
void TrayLabel::Bar::useXEmbed()
{
    if (icons || watcher.host() || !watcher.isKnown()
        || QGuiApplication::platformName() != "xcb"_L1)
        return;
    icons = std::make_unique<TrayIcons>(sharedMenu());
    connect(icons.get(), &TrayIcons::activated, &label,
            [this] { emit label.activated(QCursor::pos()); });
    connect(icons.get(), &TrayIcons::secondaryActivated, &label, &TrayLabel::openWindowRequested);
    icons->show(current);
}

} // namespace corvane
