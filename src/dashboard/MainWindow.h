#pragma once

#include "chip/ChipIdentity.h"
#include "processes/AIWorkload.h"
#include "processes/ProcessRow.h"
#include "records/SystemMetrics.h"

#include <QWidget>

#include <array>
#include <optional>
#include <vector>

namespace corvane {

class AIWorkloadsCard;
class DashboardHeader;
class MemoryCard;
class PowerCard;
class ProcessCard;
class UtilizationCard;

/// The dashboard window: a header over seven cards. Its actions are in a menu on it. Made by the
/// application when it is opened, gone when it is closed; main thread. It is told what to show, and
/// shows the newest of it when it comes back into sight.
class MainWindow : public QWidget {
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr, const ChipInfo &chip = ChipInfo::current());

    using QWidget::show;

    /// History oldest first; the charts show at most 180 of its samples.
    void show(const SystemMetrics &current, const std::vector<SystemMetrics> &history);

    /// Largest first.
    void showProcesses(const std::vector<ProcessRow> &processes);
    void showWorkloads(const std::vector<AIWorkload> &workloads);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void changeEvent(QEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    /// What came while nothing could be seen of the window.
    struct Unseen {
        std::optional<std::pair<SystemMetrics, std::vector<SystemMetrics>>> samples = {};
        std::optional<std::vector<ProcessRow>> processes = {};
        std::optional<std::vector<AIWorkload>> workloads = {};
    };

    bool canBeSeen() const;
    void showUnseen();

    DashboardHeader *m_header;
    MemoryCard *m_memory;
    PowerCard *m_power;
    std::array<UtilizationCard *, 3> m_utilization;
    AIWorkloadsCard *m_workloads;
    ProcessCard *m_processes;
    std::uint64_t m_totalMemory = 0;
    Unseen m_unseen;
};

} // namespace corvane
