#include "tray/TrayIcons_linux.h"

#include "threads/MainThread.h"

#include <QSystemTrayIcon>

namespace corvane {

TrayIcons::TrayIcons(QMenu &menu, QObject *parent) : QObject(parent)
{
    assertMainThread();
    for (const auto position : {LabelPosition::left, LabelPosition::middle, LabelPosition::right})
        addItem(position, menu);
    show(SystemMetrics::placeholder());
    for (const Item &item : m_items)
        item.icon->show();
}

TrayIcons::~TrayIcons() = default;

void TrayIcons::show(const MetricValues &current)
{
    const auto numbers = labelNumbers(current);
    const QString toolTip = inWords(numbers);
    for (std::size_t index = 0; index < numbers.size(); ++index) {
        Item &item = m_items[index];
        if (toolTip != m_toolTip)
            item.icon->setToolTip(toolTip);
        if (item.number == numbers[index])
            continue;
        item.number = numbers[index];
        item.icon->setIcon(trayIcon(item.number, item.position));
    }
    m_toolTip = toolTip;
}

void TrayIcons::addItem(LabelPosition position, QMenu &menu)
{
    Item item{.position = position, .icon = std::make_unique<QSystemTrayIcon>()};
    item.icon->setContextMenu(&menu);
    connect(item.icon.get(), &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::MiddleClick)
                    emit secondaryActivated();
                else if (reason != QSystemTrayIcon::Context)
                    emit activated();
            });
    m_items.push_back(std::move(item));
}

} // namespace corvane
