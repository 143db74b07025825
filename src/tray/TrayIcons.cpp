#include "tray/TrayIcons.h"

#include "tray/MetricMenu.h"

#include <QSystemTrayIcon>

namespace corvane {

TrayIcons::TrayIcons(const QList<QAction *> &commands, QObject *parent) : QObject(parent)
{
    for (const auto position : {LabelPosition::left, LabelPosition::middle, LabelPosition::right})
        addItem(position, commands);
    show(SystemMetrics::placeholder());
    for (const Item &item : m_items)
        item.icon->show();
}

TrayIcons::~TrayIcons() = default;

void TrayIcons::show(const SystemMetrics &current)
{
    const auto numbers = labelNumbers(current);
    const QString toolTip = inWords(numbers);
    for (std::size_t index = 0; index < numbers.size(); ++index) {
        Item &item = m_items[index];
        item.menu->show(current);
        if (toolTip != m_toolTip)
            item.icon->setToolTip(toolTip);
        if (item.number == numbers[index])
            continue;
        item.number = numbers[index];
        item.icon->setIcon(trayIcon(item.number, item.position));
    }
    m_toolTip = toolTip;
}

void TrayIcons::addItem(LabelPosition position, const QList<QAction *> &commands)
{
    Item item{.position = position,
              .menu = std::make_unique<MetricMenu>(commands),
              .icon = std::make_unique<QSystemTrayIcon>()};
    item.icon->setContextMenu(item.menu.get());
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
