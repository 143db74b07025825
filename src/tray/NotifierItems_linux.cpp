#include "tray/NotifierItems_linux.h"

#include "controls/Logo.h"
#include "threads/BackgroundJob.h"
#include "threads/MainThread.h"
#include "tray/StatusNotifierItem_linux.h"
#include "tray/TrayPicture.h"

#include <QGuiApplication>
#include <QMenu>

#include <algorithm>
#include <utility>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// The widest label of these quantities that has to fit.
QString widestLabel(LabelNumbers numbers)
{
    for (LabelNumber &number : numbers)
        number.text = number.kind == LabelKind::power ? u"999W"_s : u"100"_s;
    return inOneLine(numbers);
}

template <typename Paint>
QList<QImage> inAllSizes(Paint paint)
{
    QList<QImage> pictures;
    for (const int pixels : trayPictureSizes())
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
    if (host.form != LabelForm::squares)
        addItem(u"corvane"_s);
}

NotifierItems::~NotifierItems() = default;

void NotifierItems::show(const MetricValues &current)
{
    const LabelNumbers numbers = labelNumbers(current);
    switch (m_host.form) {
    case LabelForm::text:
        showText(numbers);
        break;
    case LabelForm::widePicture:
        showWidePicture(numbers);
        break;
    case LabelForm::squares:
        showSquares(numbers);
        break;
    }
    // Desktops answer each announcement with a request for all that an item has, pictures included.
    constexpr int showsPerAnnouncement = 3;
    const bool announcesToolTips = m_shows++ % showsPerAnnouncement == 0;
    for (const auto &item : m_items) {
        item->setToolTip(inWords(numbers));
        if (announcesToolTips)
            item->announceToolTip();
    }
    m_numbers = numbers;
    if (!m_isRegistering && m_registered < m_items.size())
        registerNext();
}

bool NotifierItems::areInTray(const QStringList &listed) const
{
    return std::ranges::all_of(m_items,
                               [&listed](const auto &item) { return item->isInTray(listed); });
}

void NotifierItems::setItemCount(std::size_t count)
{
    while (m_items.size() < count)
        addItem(u"corvane-%1"_s.arg(m_items.size() + 1));
    m_items.resize(count);
    if (m_registered <= count)
        return;
    m_registered = count;
    registerNext(); // The desktop may not have read the item that left.
}

/// An item's id never changes: desktops remember its place by it.
void NotifierItems::addItem(const QString &id)
{
    m_items.push_back(std::make_unique<StatusNotifierItem>(id, m_menu, m_waits));
    const StatusNotifierItem *item = m_items.back().get();
    connect(item, &StatusNotifierItem::activated, this, &NotifierItems::activated);
    connect(item, &StatusNotifierItem::secondaryActivated, this,
            &NotifierItems::secondaryActivated);
    connect(item, &StatusNotifierItem::contextMenuRequested, this, &NotifierItems::popUpMenu);
    connect(item, &StatusNotifierItem::settled, this, &NotifierItems::registerNext);
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

void NotifierItems::showText(const LabelNumbers &numbers)
{
    StatusNotifierItem &item = *m_items.front();
    item.showTitle(u"Corvane"_s);
    if (m_numbers.empty())
        item.showPictures([] { return inAllSizes(signPicture); });
    item.showLabel(inOneLine(numbers), widestLabel(numbers));
}

void NotifierItems::showWidePicture(const LabelNumbers &numbers)
{
    StatusNotifierItem &item = *m_items.front();
    item.showTitle(u"Corvane"_s);
    if (numbers != m_numbers)
        item.showPictures([numbers] {
            return inAllSizes([&](int pixels) { return widePicture(numbers, pixels); });
        });
}

void NotifierItems::showSquares(const LabelNumbers &numbers)
{
    const std::size_t count = numbers.size();
    const std::size_t before = m_items.size();
    setItemCount(count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t place = m_host.order == ItemOrder::oldestLeft ? i : count - 1 - i;
        const LabelNumber &number = numbers[place];
        // Some desktops sort the items by title.
        m_items[i]->showTitle(
            u"Corvane %1 %2"_s.arg(QString::number(place + 1), labelName(number.kind)));
        if (count == before && number == m_numbers[place])
            continue;
        m_items[i]->showPictures([number, position = LabelPosition{place, count}] {
            return inAllSizes([&](int pixels) { return trayPicture(number, position, pixels); });
        });
    }
}

/// Registers an item once the desktop has read the one before: several at once would appear in any
/// order.
void NotifierItems::registerNext()
{
    if (m_isOpening)
        return;
    m_isRegistering = m_registered < m_items.size();
    if (!m_isRegistering) {
        m_settling.start();
        return;
    }
    constexpr auto retryInterval = std::chrono::seconds(3);
    m_isOpening = runThenDeliver(
        this, [address = m_busAddress] { return openBusHandle(address); },
        [this](BusHandle bus) { registerOver(std::move(bus)); });
    if (!m_isOpening)
        QTimer::singleShot(retryInterval, this, &NotifierItems::registerNext);
}

void NotifierItems::registerOver(BusHandle bus)
{
    m_isOpening = false;
    if (m_registered == m_items.size()) { // The item has left in the meantime.
        registerNext();
        return;
    }
    m_items[m_registered]->exportOver(std::move(bus));
    m_items[m_registered]->registerAtWatcher();
    ++m_registered;
}

} // namespace corvane
