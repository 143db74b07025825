#include "dashboard/MainWindow.h"

#include "cards/MemoryCard.h"
#include "cards/UtilizationCard.h"
#include "controls/ContextMenu.h"
#include "controls/WindowBackground.h"
#include "dashboard/DashboardHeader.h"
#include "devices/GPUCard.h"
#include "devices/GPUMemoryCard.h"
#include "devices/PowerCard.h"
#include "devices/SmallPowerCard.h"
#include "lists/AIWorkloadsCard.h"
#include "lists/ProcessCard.h"
#include "records/MachineParts.h"
#include "records/SeriesReduction.h"
#include "threads/MainThread.h"
#include "ui/ContentArea.h"
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
#include <QWindow>

#include <algorithm>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr int maxChartPoints = 180;
constexpr QSize defaultSize{1280, 900};

} // namespace

MainWindow::MainWindow(QWidget *parent, const ChipInfo &chip, const MachineCoverage &machine)
    : QWidget(parent),
      m_chip(chip),
      m_header(new DashboardHeader(chip.name, this))
{
    assertMainThread();
    setAttribute(Qt::WA_OpaquePaintEvent);
    setWindowTitle(u"Corvane"_s);
    setFocusPolicy(Qt::ClickFocus); // Tab would stop here without a ring.
    setFocus();                     // So that no part starts with a focus ring.
    setMinimumSize(DashboardLayout::minimum);
    connect(m_header, &DashboardHeader::historyWindowChosen, this,
            &MainWindow::historyWindowChosen);
    setGrid(dashboardGrid(machine));
    resize(defaultSize.boundedTo(screen()->availableSize()));
    closeOnControlW(*this);
    new WindowAccessor(
        [](NativeWindow window) {
            hideTitleBar(window, Theme::windowGradient({1, 1}).stops().first().second);
            WindowLifecycleCoordinator::shared().attach(window);
        },
        this);
}

void MainWindow::show(const SystemMetrics &current, const ChartHistory &history)
{
    m_totalMemory = current.memory.total;
    setGrid(dashboardGrid(coverageOf(current)));
    if (!takesContents()) {
        recomputeScales(history.recent); // The scale covers spikes while the window is hidden too.
        return;
    }
    // A history that is short enough is not copied.
    std::vector<SystemMetrics> reduced;
    if (std::ssize(history.recent) > maxChartPoints)
        reduced = chartDownsampled(history.recent, maxChartPoints);
    const ChartHistory shown(reduced.empty() ? history.recent : reduced, history.means);
    showMachine(current);
    m_header->show(current);
    for (const DashboardRow &row : m_grid) {
        for (const DashboardRow::Cell &cell : row.cells)
            showCard(cell.card, current, shown);
    }
}

void MainWindow::showCard(DashboardCard which, const SystemMetrics &current,
                          const ChartHistory &history)
{
    const auto show = [&]<typename CardType>(CardType *shown) { shown->show(current, history); };
    switch (which) {
    case DashboardCard::memory:
        return show(static_cast<MemoryCard *>(card(which)));
    case DashboardCard::gpuMemory:
        return show(static_cast<GPUMemoryCard *>(card(which)));
    case DashboardCard::power:
        return show(static_cast<PowerCard *>(card(which)));
    case DashboardCard::smallPower:
        return show(static_cast<SmallPowerCard *>(card(which)));
    case DashboardCard::cpu:
    case DashboardCard::gpu:
    case DashboardCard::npu:
        return show(static_cast<UtilizationCard *>(card(which)));
    case DashboardCard::gpus:
        return show(static_cast<GPUCard *>(card(which)));
    case DashboardCard::workloads:
    case DashboardCard::processes:
        return; // These have data of their own.
    }
}

void MainWindow::showEnergy(const EnergyReport &energy)
{
    if (!canBeSeen())
        return;
    if (const auto found = m_cards.find(DashboardCard::power); found != m_cards.end())
        static_cast<PowerCard *>(found->second)->showEnergy(energy);
    if (const auto found = m_cards.find(DashboardCard::smallPower); found != m_cards.end())
        static_cast<SmallPowerCard *>(found->second)->showEnergy(energy);
}

void MainWindow::setHistoryWindow(HistoryWindow window)
{
    m_header->setHistoryWindow(window);
}

/// What the lists need to know of machine and sample.
void MainWindow::showMachine(const SystemMetrics &current)
{
    const MachineCoverage &machine = coverageOf(current);
    auto *workloads = static_cast<AIWorkloadsCard *>(card(DashboardCard::workloads));
    workloads->setMachine(machine);
    workloads->setRoom(modelRoom(current));
    // With every sample it would move while a model is loaded: the holders lag behind.
    if (std::exchange(m_holdersAreNew, false))
        workloads->setOtherGPUMemory(unattributedMemory(current, m_holders).value_or(0));
    const bool isVRAM = !machine.isWhole && hasVRAM(machine);
    static_cast<ProcessCard *>(card(DashboardCard::processes))
        ->setGPUMemoryLabel(isVRAM ? u"VRAM"_s : QString());
}

void MainWindow::recomputeScales(const std::vector<SystemMetrics> &history)
{
    if (const auto found = m_cards.find(DashboardCard::power); found != m_cards.end())
        static_cast<PowerCard *>(found->second)->recomputeYMax(history);
    if (const auto found = m_cards.find(DashboardCard::smallPower); found != m_cards.end())
        static_cast<SmallPowerCard *>(found->second)->recomputeYMax(history);
}

void MainWindow::showProcesses(const std::vector<ProcessRow> &processes)
{
    if (takesContents())
        static_cast<ProcessCard *>(card(DashboardCard::processes))->show(processes, m_totalMemory);
}

void MainWindow::showWorkloads(const std::vector<AIWorkload> &workloads,
                               const std::vector<GPUHolders> &holders)
{
    if (!takesContents())
        return;
    static_cast<AIWorkloadsCard *>(card(DashboardCard::workloads))->show(workloads);
    m_holders = holders;
    m_holdersAreNew = true;
    if (const auto found = m_cards.find(DashboardCard::gpuMemory); found != m_cards.end())
        static_cast<GPUMemoryCard *>(found->second)->setHolders(holders);
}

void MainWindow::setGrid(DashboardGrid grid)
{
    if (grid == m_grid)
        return;
    m_grid = std::move(grid);
    std::vector<Card *> shown;
    for (const DashboardRow &row : m_grid) {
        for (const DashboardRow::Cell &cell : row.cells)
            shown.push_back(card(cell.card));
    }
    for (const auto &[which, each] : m_cards)
        each->setVisible(std::ranges::find(shown, each) != shown.end());
    setTabOrderOfCards();
    arrange();
}

/// In reading order: each card's info button, then its charts or list.
void MainWindow::setTabOrderOfCards()
{
    QWidget *last = m_header->lastInTabOrder();
    for (const DashboardRow &row : m_grid) {
        for (const DashboardRow::Cell &cell : row.cells) {
            for (QWidget *part : card(cell.card)->findChildren<QWidget *>()) {
                if (part->focusPolicy() == Qt::NoFocus)
                    continue;
                setTabOrder(last, part);
                last = part;
            }
        }
    }
}

Card *MainWindow::card(DashboardCard which)
{
    const auto [place, isNew] = m_cards.try_emplace(which, nullptr);
    if (isNew)
        place->second = madeCard(which);
    return place->second;
}

Card *MainWindow::madeCard(DashboardCard which)
{
    switch (which) {
    case DashboardCard::memory:
        return new MemoryCard(this);
    case DashboardCard::gpuMemory: {
        auto *made = new GPUMemoryCard(this);
        made->setHolders(m_holders);
        return made;
    }
    case DashboardCard::power:
        return new PowerCard(this);
    case DashboardCard::smallPower:
        return new SmallPowerCard(this);
    case DashboardCard::cpu:
        return new UtilizationCard(ComputeUnit::cpu, this, m_chip);
    case DashboardCard::gpu:
        return new UtilizationCard(ComputeUnit::gpu, this, m_chip);
    case DashboardCard::gpus:
        return new GPUCard(this);
    case DashboardCard::npu:
        return new UtilizationCard(ComputeUnit::ane, this, m_chip);
    case DashboardCard::workloads:
        return new AIWorkloadsCard(this);
    case DashboardCard::processes:
        break;
    }
    return new ProcessCard(this);
}

bool MainWindow::canBeSeen() const
{
    return isVisible() && !isMinimized() && !m_isCovered;
}

bool MainWindow::takesContents()
{
    m_isOutdated = m_isOutdated || !canBeSeen();
    return canBeSeen();
}

void MainWindow::followVisibility()
{
    const bool wasSeen = std::exchange(m_wasSeen, canBeSeen());
    if (wasSeen && !m_wasSeen) {
        m_isOutdated = true;
        emit noLongerSeen();
    }
    if (m_wasSeen && std::exchange(m_isOutdated, false))
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
    m_scale = devicePixelRatioF();
    const DashboardLayout layout = dashboardLayout({width(), bottom}, m_grid, m_scale);
    m_header->setGeometry(layout.header);
    for (const DashboardLayout::Place &place : layout.cards)
        placeContent(*card(place.card), place.rect);
}

void MainWindow::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    windowHandle()->installEventFilter(this);
    m_isCovered = false; // The window system has not told yet.
    followVisibility();
}

void MainWindow::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    followVisibility();
}

/// The contents are renewed before a window that was covered is painted.
bool MainWindow::eventFilter(QObject *object, QEvent *event)
{
    if (object == windowHandle() && event->type() == QEvent::Expose) {
        m_isCovered = isVisible() && !windowHandle()->isExposed();
        followScale();
        followVisibility();
    }
    return QWidget::eventFilter(object, event);
}

bool MainWindow::event(QEvent *event)
{
    if (event->type() == QEvent::UpdateRequest)
        followScale();
    return QWidget::event(event);
}

/// The cards' edges are placed on the pixels of the screen before the window is painted there.
void MainWindow::followScale()
{
    if (m_scale != devicePixelRatioF())
        arrange();
}

void MainWindow::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange)
        followVisibility();
}

void MainWindow::contextMenuEvent(QContextMenuEvent *event)
{
    popUpActions(*this, event->globalPos());
}

} // namespace corvane
