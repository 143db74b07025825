#include "tray/TrayIcons_linux.h"

#include "threads/MainThread.h"
#include "tray/TrayPicture.h"

#include <QSystemTrayIcon>

namespace corvane {

TrayIcons::TrayIcons(QMenu &menu, QObject *parent) : QObject(parent), m_menu(menu)
{
    assertMainThread();
}

TrayIcons::~TrayIcons() = default;

void TrayIcons::show(const MetricValues &current)
{
    const LabelNumbers numbers = labelNumbers(current);
    if (numbers == m_numbers)
        return;
    const std::size_t before = m_icons.size();
    while (m_icons.size() < numbers.size())
        addIcon();
    m_icons.resize(numbers.size());
    for (std::size_t place = 0; place < numbers.size(); ++place) {
        QSystemTrayIcon &icon = *m_icons[place];
        icon.setToolTip(inWords(numbers));
        if (numbers.size() != before || numbers[place] != m_numbers[place])
            icon.setIcon(trayIcon(numbers[place], {place, numbers.size()}));
        icon.show();
    }
    m_numbers = numbers;
}

void TrayIcons::addIcon()
{
    auto icon = std::make_unique<QSystemTrayIcon>();
    icon->setContextMenu(&m_menu);
    connect(icon.get(), &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::MiddleClick)
                    emit secondaryActivated();
                else if (reason != QSystemTrayIcon::Context)
                    emit activated();
            });
    m_icons.push_back(std::move(icon));
}

} // namespace corvane
