#include "settings/SettingsWindow.h"

#include "controls/WindowBackground.h"
#include "login/LaunchAtLoginManager.h"
#include "settings/GeneralSettings.h"
#include "settings/SettingsTabs.h"
#include "settings/UpdateSettings.h"
#include "threads/MainThread.h"
#include "ui/PixelGrid.h"
#include "ui/Theme.h"
#include "updates/UpdaterManager.h"
#include "windows/WindowTools.h"

#include <QEvent>
#include <QPaintEvent>
#include <QPainter>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr QSize windowSize{520, 360};
constexpr int barHeight = SettingsTabs::barHeight;

} // namespace

SettingsWindow::SettingsWindow(LaunchAtLoginManager &launch, UpdaterManager &updater,
                               AppSettings &settings, const MetricsFile &metrics, QWidget *parent)
    : QWidget(parent, Qt::Dialog),
      m_launch(launch),
      m_updater(updater),
      m_tabs(new SettingsTabs(this)),
      m_pages{new GeneralSettings(launch, settings, metrics, this),
              new UpdateSettings(updater, this)}
{
    assertMainThread();
    setAttribute(Qt::WA_OpaquePaintEvent);
    setWindowTitle(u"Corvane Settings"_s);
    setFixedSize(windowSize);
    closeOnControlW(*this);
    closeOnEscape(*this);

    m_tabs->addTab(u"gearshape"_s, u"General"_s);
    m_tabs->addTab(u"arrow.down.circle"_s, u"Updates"_s);
    const QSize tabs = m_tabs->sizeHint();
    m_tabs->setGeometry((width() - tabs.width()) / 2, 0, tabs.width(), barHeight - 1);
    for (SettingsPage *page : m_pages)
        page->setGeometry(0, barHeight, width(), height() - barHeight);
    connect(m_tabs, &QTabBar::currentChanged, this, &SettingsWindow::showPage);
    showPage(m_tabs->currentIndex());
    setFocusPolicy(Qt::ClickFocus); // Tab would stop here without a ring.
    setFocus();                     // So that no control starts with a focus ring.
}

void SettingsWindow::showTab(SettingsTab tab)
{
    m_tabs->setCurrentIndex(static_cast<int>(tab));
}

void SettingsWindow::showPage(int index)
{
    for (std::size_t page = 0; page < m_pages.size(); ++page)
        m_pages[page]->setVisible(static_cast<int>(page) == index);
}

void SettingsWindow::readAgain()
{
    m_launch.refresh();
    m_updater.refresh();
}

void SettingsWindow::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    paintWindowBackground(painter, *this, event->region());
    painter.fillRect(QRect(0, 0, width(), barHeight), Theme::tabBar);
    fillHairline(painter, QRectF(0, barHeight - 1, width(), 1), Theme::tabBarLine);
}

void SettingsWindow::showEvent(QShowEvent *event)
{
    readAgain();
    QWidget::showEvent(event);
}

/// The user may have changed the state in the desktop's own settings meanwhile.
bool SettingsWindow::event(QEvent *event)
{
    if (event->type() == QEvent::WindowActivate)
        readAgain();
    return QWidget::event(event);
}

} // namespace corvane
