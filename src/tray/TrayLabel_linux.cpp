#include "tray/NotifierItems.h"
#include "tray/StatusNotifierWatcher.h"
#include "tray/TrayIcons.h"
#include "tray/TrayLabel.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <QSystemTrayIcon>
#include <QTimer>

#include <chrono>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// A session starts its programs in any order, and a panel that is started anew is gone for a
/// moment. So much later it is taken for missing.
constexpr auto patience = 1500ms;

/// So often a tray that has lost items gets them anew.
constexpr int mostRenewals = 2;

/// Where the click was. Desktops tell it in pixels of the screen, or not at all.
QPoint panelAnchor(const QPoint &told)
{
    const bool isKnown = !told.isNull() && QGuiApplication::screenAt(told)
        && QGuiApplication::primaryScreen()->devicePixelRatio() == 1;
    return isKnown ? told : QCursor::pos();
}

} // namespace

struct TrayLabel::Bar {
    Bar(TrayLabel &owner, const QList<QAction *> &ofMenus) : label(owner), commands(ofMenus) { }

    void followHost();
    void putItemsUp();
    void checkItems(const QStringList &taken);
    void useOldProtocol();

    TrayLabel &label;
    SystemMetrics current = SystemMetrics::placeholder();
    const QList<QAction *> commands; ///< Of every menu.
    StatusNotifierWatcher watcher;
    QTimer missing;                       ///< Runs after the host went.
    std::unique_ptr<NotifierItems> items; ///< While there is a host.
    int renewals = 0;                     ///< Of the items, for this host.
    std::unique_ptr<TrayIcons> icons;     ///< On X11 while there is none.
};

TrayLabel::TrayLabel(const QList<QAction *> &commands, QObject *parent)
    : QObject(parent),
      m_bar(std::make_unique<Bar>(*this, commands))
{
    Bar *bar = m_bar.get();
    bar->missing.setSingleShot(true);
    bar->missing.setInterval(patience);
    connect(&bar->missing, &QTimer::timeout, this, [bar] { bar->useOldProtocol(); });
    connect(&bar->watcher, &StatusNotifierWatcher::hostChanged, this, [bar] { bar->followHost(); });
    connect(&bar->watcher, &StatusNotifierWatcher::itemsListed, this,
            [bar](const QStringList &taken) { bar->checkItems(taken); });
    QTimer::singleShot(patience, this, [this, bar] {
        bar->useOldProtocol();
        if (!isAvailable())
            emit trayIsMissing();
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
    putItemsUp();
}

void TrayLabel::Bar::putItemsUp()
{
    items.reset(); // Its connections have names that are used again.
    items = std::make_unique<NotifierItems>(watcher.busAddress(), *watcher.host(), commands);
    connect(items.get(), &NotifierItems::activated, &label,
            [this](const QPoint &position) { emit label.activated(panelAnchor(position)); });
    connect(items.get(), &NotifierItems::secondaryActivated, &label,
            &TrayLabel::openWindowRequested);
    connect(items.get(), &NotifierItems::settled, &watcher, &StatusNotifierWatcher::askForItems);
    items->show(current);
}

/// Puts all of them up anew where one is missing: it alone would get a place at the end.
void TrayLabel::Bar::checkItems(const QStringList &taken)
{
    if (!items || items->areTaken(taken) || renewals == mostRenewals)
        return;
    ++renewals;
    putItemsUp();
}

/// Qt's icons look for a tray on the bus too, and wait for its answer: not before it is known that
/// there is none.
void TrayLabel::Bar::useOldProtocol()
{
    if (icons || watcher.host() || !watcher.isKnown()
        || QGuiApplication::platformName() != "xcb"_L1)
        return;
    icons = std::make_unique<TrayIcons>(commands);
    connect(icons.get(), &TrayIcons::activated, &label,
            [this] { emit label.activated(QCursor::pos()); });
    connect(icons.get(), &TrayIcons::secondaryActivated, &label, &TrayLabel::openWindowRequested);
    icons->show(current);
}

} // namespace corvane
