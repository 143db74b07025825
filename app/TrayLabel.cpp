#include "app/TrayLabel.h"

#include "app/ReadOutMenu.h"

#include <QSystemTrayIcon>

namespace corvane {

TrayLabel::TrayLabel(QObject *parent) : QObject(parent)
{
    for (const auto position : {LabelPosition::left, LabelPosition::middle, LabelPosition::right})
        addItem(position);
    show(SystemMetrics::placeholder());
    for (const Item &item : m_items)
        item.icon->show();
}

TrayLabel::~TrayLabel() = default;

bool TrayLabel::isAvailable()
{
    return QSystemTrayIcon::isSystemTrayAvailable();
}

void TrayLabel::show(const SystemMetrics &current)
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

void TrayLabel::addItem(LabelPosition position)
{
    Item item{.position = position,
              .menu = std::make_unique<ReadOutMenu>(),
              .icon = std::make_unique<QSystemTrayIcon>()};
    item.icon->setContextMenu(item.menu.get());
    connect(item.menu.get(), &ReadOutMenu::openWindowRequested, this,
            &TrayLabel::openWindowRequested);
    connect(item.menu.get(), &ReadOutMenu::quitRequested, this, &TrayLabel::quitRequested);
    connect(item.icon.get(), &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::MiddleClick)
                    emit openWindowRequested();
                else if (reason != QSystemTrayIcon::Context)
                    emit activated();
            });
    m_items.push_back(std::move(item));
}

} // namespace corvane
