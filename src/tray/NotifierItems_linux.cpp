#include "tray/NotifierItems_linux.h"

#include "bus/BusOpening.h"
#include "controls/Logo.h"
#include "threads/BackgroundJob.h"
#include "threads/MainThread.h"
#include "tray/StatusNotifierItem_linux.h"
#include "tray/TrayPicture.h"

#include <QGuiApplication>
#include <QMenu>

#include <algorithm>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// The widest label that has to fit.
const LabelNumbers &widestNumbers()
{
    static const LabelNumbers widest{{{.text = u"100"_s}, {.text = u"100"_s}, {.text = u"999W"_s}}};
    return widest;
}

template <typename Paint>
QList<QImage> inAllSizes(Paint paint)
{
    QList<QImage> pictures;
    for (const int pixels : trayPictureSizes)
        pictures.append(paint(pixels));
    return pictures;
}

} // namespace

NotifierItems::NotifierItems(const QString &busAddress, const TrayHost &host, QMenu &menu,
                             const TrayWaits &waits, QObject *parent)
    : QObject(parent),
      m_busAddress(busAddress),
      m_host(host),
      m_menu(menu),
      m_waits(waits)
{
    assertMainThread();
    m_settling.setSingleShot(true);
    m_settling.setInterval(waits.check);
    connect(&m_settling, &QTimer::timeout, this, &NotifierItems::settled);
    if (host.form != LabelForm::squares) {
        addItem(u"corvane"_s, u"Corvane"_s);
    } else {
        // Some desktops sort the items by title.
        addItem(u"corvane-memory"_s, u"Corvane 1 Memory"_s);
        addItem(u"corvane-gpu"_s, u"Corvane 2 GPU"_s);
        addItem(u"corvane-power"_s, u"Corvane 3 Power"_s);
    }
    openConnections();
}

NotifierItems::~NotifierItems() = default;

void NotifierItems::show(const MetricValues &current)
{
    const LabelNumbers numbers = labelNumbers(current);
    for (Item &item : m_items) {
        item.notifier->showToolTip(inWords(numbers));
        updatePicture(item, numbers);
    }
    m_numbers = numbers;
    if (m_isExported && m_registered == 0)
        registerNext();
}

void NotifierItems::openConnections()
{
    constexpr auto retryInterval = std::chrono::seconds(3);
    const auto open = [address = m_busAddress, count = m_items.size()] {
        std::vector<QDBusConnection> connections;
        for (std::size_t item = 0; item < count; ++item)
            connections.push_back(openBus(address));
        return connections;
    };
    const bool isTried =
        runThenDeliver(this, open, [this](const std::vector<QDBusConnection> &connections) {
            exportItems(connections);
        });
    if (!isTried)
        QTimer::singleShot(retryInterval, this, &NotifierItems::openConnections);
}

void NotifierItems::exportItems(const std::vector<QDBusConnection> &connections)
{
    for (std::size_t item = 0; item < m_items.size(); ++item)
        m_items[item].notifier->exportOver(connections[item]);
    m_isExported = true;
    registerNext();
}

bool NotifierItems::areInTray(const QStringList &listed) const
{
    return std::ranges::all_of(
        m_items, [&listed](const Item &item) { return item.notifier->isInTray(listed); });
}

void NotifierItems::addItem(const QString &id, const QString &title)
{
    Item item;
    item.number = m_items.size();
    item.notifier = std::make_unique<StatusNotifierItem>(id, title, m_menu, m_waits);
    const StatusNotifierItem *notifier = item.notifier.get();
    connect(notifier, &StatusNotifierItem::activated, this, &NotifierItems::activated);
    connect(notifier, &StatusNotifierItem::secondaryActivated, this,
            &NotifierItems::secondaryActivated);
    connect(notifier, &StatusNotifierItem::contextMenuRequested, this, &NotifierItems::popUpMenu);
    connect(notifier, &StatusNotifierItem::settled, this, &NotifierItems::registerNext);
    m_items.push_back(std::move(item));
}

void NotifierItems::popUpMenu(const QPoint &position)
{
    // A Wayland compositor shows a menu that has no parent window as an ordinary window.
    if (QGuiApplication::platformName() == "wayland"_L1) {
        emit activated(position);
        return;
    }
    m_menu.hide(); // It may be open at another item.
    m_menu.popup(position);
}

void NotifierItems::updatePicture(Item &item, const LabelNumbers &numbers)
{
    const bool isFirst = m_registered == 0;
    switch (m_host.form) {
    case LabelForm::text:
        if (isFirst)
            item.notifier->showPictures([] { return inAllSizes(signPicture); });
        item.notifier->showLabel(inOneLine(numbers), inOneLine(widestNumbers()));
        break;
    case LabelForm::widePicture:
        if (isFirst || numbers != m_numbers)
            item.notifier->showPictures([numbers] {
                return inAllSizes([&](int pixels) { return widePicture(numbers, pixels); });
            });
        break;
    case LabelForm::squares: {
        const LabelNumber &number = numbers[item.number];
        const auto position = static_cast<LabelPosition>(item.number);
        if (isFirst || number != m_numbers[item.number])
            item.notifier->showPictures([number, position] {
                return inAllSizes(
                    [&](int pixels) { return trayPicture(number, position, pixels); });
            });
        break;
    }
    }
}

/// Registers an item once the desktop has read the one before: several at once would appear in any
/// order.
void NotifierItems::registerNext()
{
    if (m_registered == m_items.size()) {
        m_settling.start();
        return;
    }
    const std::size_t next =
        m_host.order == ItemOrder::oldestLeft ? m_registered : m_items.size() - 1 - m_registered;
    ++m_registered;
    m_items[next].notifier->registerAtWatcher();
}

} // namespace corvane
