#include "dashboard/MainWindow.h"

#include "cards/AIWorkloadsCard.h"
#include "cards/MemoryCard.h"
#include "cards/PowerCard.h"
#include "cards/ProcessCard.h"
#include "cards/UtilizationCard.h"
#include "controls/ContextMenu.h"
#include "controls/WindowBackground.h"
#include "dashboard/DashboardHeader.h"
#include "dashboard/DashboardLayout.h"
#include "records/SeriesReduction.h"
#include "threads/MainThread.h"
#include "ui/Theme.h"
#include "windows/WindowAccessor.h"
#include "windows/WindowLifecycleCoordinator.h"
#include "windows/WindowStyle.h"
#include "windows/WindowTools.h"

#include <QContextMenuEvent>
#include <QEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScreen>

#include <algorithm>
#include <utility>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr int maxChartPoints = 180;
constexpr QSize defaultSize{1280, 900};

} // namespace

MainWindow::MainWindow(QWidget *parent, const ChipInfo &chip)
    : QWidget(parent),
      m_header(new DashboardHeader(chip.name, this)),
      m_memory(new MemoryCard(this)),
      m_power(new PowerCard(this)),
      m_utilization{new UtilizationCard(ComputeUnit::cpu, this, chip),
                    new UtilizationCard(ComputeUnit::gpu, this, chip),
                    new UtilizationCard(ComputeUnit::ane, this, chip)},
      m_workloads(new AIWorkloadsCard(this)),
      m_processes(new ProcessCard(this))
{
    assertMainThread();
    setAttribute(Qt::WA_OpaquePaintEvent);
    setWindowTitle(u"Corvane"_s);
    setFocusPolicy(Qt::StrongFocus);
    setFocus(); // So that no part starts with a focus ring.
    setMinimumSize(DashboardLayout::minimum);
    resize(defaultSize.boundedTo(screen()->availableSize()));
    closeOnControlW(*this);
    new WindowAccessor(
        [](NativeWindow window) {
            hideTitleBar(window, Theme::windowGradient({1, 1}).stops().first().second);
            WindowLifecycleCoordinator::shared().attach(window);
        },
        this);
}

void MainWindow::show(const SystemMetrics &current, const std::vector<SystemMetrics> &history)
{
    m_totalMemory = current.memory.total;
    if (!takesContents()) {
        m_power->recomputeYMax(history); // The scale covers spikes while the window is hidden too.
        return;
    }
    // A history that is short enough is not copied.
    std::vector<SystemMetrics> reduced;
    if (std::ssize(history) > maxChartPoints)
        reduced = chartDownsampled(history, maxChartPoints);
    const std::vector<SystemMetrics> &shown = reduced.empty() ? history : reduced;
    m_header->show(current);
    m_memory->show(current, shown);
    m_power->show(current, shown);
    for (UtilizationCard *card : m_utilization)
        card->show(current, shown);
}

void MainWindow::showProcesses(const std::vector<ProcessRow> &processes)
{
    if (takesContents())
        m_processes->show(processes, m_totalMemory);
}

void MainWindow::showWorkloads(const std::vector<AIWorkload> &workloads)
{
    if (takesContents())
        m_workloads->show(workloads);
}

bool MainWindow::canBeSeen() const
{
    return isVisible() && !isMinimized();
}

bool MainWindow::takesContents()
{
    m_isOutdated = m_isOutdated || !canBeSeen();
    return canBeSeen();
}

void MainWindow::requestContents()
{
    if (!m_isOutdated || !canBeSeen())
        return;
    m_isOutdated = false;
    emit contentsNeeded();
}

void MainWindow::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    paintWindowBackground(painter, *this, event->region());
}

void MainWindow::showNotice(QWidget *bar)
{
    delete m_notice;
    bar->setParent(this);
    setNotice(bar);
    bar->show();
}

/// The grid keeps its height, as far as the window's size is the window's own choice.
void MainWindow::setNotice(QWidget *bar)
{
    const int before = std::exchange(m_noticeHeight, bar ? bar->height() : 0);
    m_notice = bar;
    setMinimumSize(DashboardLayout::minimum + QSize(0, m_noticeHeight));
    if (!isMaximized() && !isFullScreen()) {
        const int room = std::max(screen()->availableSize().height(), height());
        resize(width(), std::min(height() + m_noticeHeight - before, room));
    }
    arrange();
}

void MainWindow::childEvent(QChildEvent *event)
{
    if (event->removed() && event->child() == m_notice)
        setNotice(nullptr);
    QWidget::childEvent(event);
}

void MainWindow::resizeEvent(QResizeEvent *)
{
    arrange();
}

void MainWindow::arrange()
{
    const int bottom = height() - m_noticeHeight;
    if (m_notice)
        m_notice->setGeometry(0, bottom, width(), m_noticeHeight);
    const DashboardLayout layout = dashboardLayout({width(), bottom});
    const std::array<QWidget *, 7> cards{m_memory,         m_power,          m_utilization[0],
                                         m_utilization[1], m_utilization[2], m_workloads,
                                         m_processes};
    m_header->setGeometry(layout.header);
    for (std::size_t i = 0; i < cards.size(); ++i)
        cards[i]->setGeometry(layout.cards[i]);
}

void MainWindow::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    requestContents();
}

void MainWindow::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange)
        requestContents();
}

void MainWindow::contextMenuEvent(QContextMenuEvent *event)
{
    popUpActions(*this, event->globalPos());
}

} // namespace corvane
