#pragma once

#include "chip/ChipIdentity.h"
#include "dashboard/DashboardLayout.h"
#include "processes/AIWorkload.h"
#include "processes/ProcessRow.h"
#include "records/GPUHolders.h"
#include "records/HistoryWindow.h"
#include "records/SystemMetrics.h"
#include "timeline/ChartHistory.h"
#include "timeline/EnergyLedger.h"

#include <QWidget>

#include <map>
#include <vector>

namespace corvane {

class AIWorkloadsCard;
class Card;
class DashboardHeader;
class ProcessCard;

/// The dashboard window: a header above the cards that the machine has, which change when the
/// machine does. Its actions are in its context menu. The application creates it when it is opened
/// and destroys it when it is closed. While it is hidden, minimised or covered it ignores what it
/// is given to show, and requests the newest when it is visible again. Main thread.
class MainWindow : public QWidget {
    Q_OBJECT

public:
    /// `machine` decides which cards there are until the first sample is shown.
    explicit MainWindow(QWidget *parent = nullptr, const ChipInfo &chip = ChipInfo::current(),
                        const MachineCoverage &machine = {});

    using QWidget::show;

    /// The charts show at most 180 of the newest samples.
    void show(const SystemMetrics &current, const ChartHistory &history);

    /// What was measured of energy, with the next samples.
    void showEnergy(const EnergyReport &energy);

    /// The window of time that the charts show, for the choice in the header.
    void setHistoryWindow(HistoryWindow window);

    /// Largest first.
    void showProcesses(const std::vector<ProcessRow> &processes);
    void showWorkloads(const std::vector<AIWorkload> &workloads,
                       const std::vector<GPUHolders> &holders = {});

    /// Shows a bar of a fixed height below the cards until it is deleted, in a window that is
    /// higher by as much. Takes ownership.
    void showNotice(QWidget *bar);

signals:
    /// Emitted when the window is visible and does not show the newest samples, processes and
    /// workloads: when it is opened, and when it is shown again. The receiver calls the functions
    /// above.
    void contentsNeeded();

    /// Emitted when the window is hidden, minimised, or covered as far as the window system tells.
    void noLongerSeen();

    /// Emitted when the user chooses another window of time.
    void historyWindowChosen(corvane::HistoryWindow window);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void childEvent(QChildEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    bool eventFilter(QObject *object, QEvent *event) override;
    bool event(QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    bool canBeSeen() const;
    void setNotice(QWidget *bar);
    void arrange();
    void followScale();

    /// Whether new contents are to be shown; if not, the window is outdated from now on.
    bool takesContents();
    void followVisibility();

    void setGrid(DashboardGrid grid);
    void setTabOrderOfCards();
    Card *card(DashboardCard which);
    Card *madeCard(DashboardCard which);
    void showCard(DashboardCard which, const SystemMetrics &current, const ChartHistory &history);
    void recomputeScales(const std::vector<SystemMetrics> &history);
    void showMachine(const SystemMetrics &current);

    ChipInfo m_chip;
    DashboardHeader *m_header;
    DashboardGrid m_grid;
    std::map<DashboardCard, Card *> m_cards; ///< All that were needed so far.
    std::vector<GPUHolders> m_holders;
    bool m_holdersAreNew = false; ///< They came after the newest sample.
    QWidget *m_notice = nullptr;  ///< Below the cards; null without one.
    int m_noticeHeight = 0;
    double m_scale = 1; ///< Of the screen, when the cards were placed.
    std::uint64_t m_totalMemory = 0;
    bool m_isOutdated = true; ///< Nothing was shown yet, or the window was not seen since.
    bool m_isCovered = false; ///< The window system has told so.
    bool m_wasSeen = false;
};

} // namespace corvane
