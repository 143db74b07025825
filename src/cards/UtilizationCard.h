#pragma once

#include "cards/Card.h"
#include "cards/UnitReading.h"
#include "charts/HoverPill.h"
#include "timeline/ChartHistory.h"

namespace corvane {

class CoreBars;
class Sparkline;

/// The card of one compute unit: its current load, its load over time and, for the CPU, a bar for
/// every core. The GPU's is for one GPU, or for all together on a whole chip of Apple.
class UtilizationCard : public Card {
    Q_OBJECT

public:
    using Kind = ComputeUnit;

    explicit UtilizationCard(Kind kind, QWidget *parent = nullptr,
                             const ChipInfo &chip = ChipInfo::current());

    using QWidget::show;

    void show(const SystemMetrics &current, const ChartHistory &history);

    Sparkline *chart() const { return m_chart; }

protected:
    void layOut() override;

private:
    void showMachine(const MachineCoverage &machine);
    void showReading(const UnitReading &reading, bool isKnown);
    void showStat(const QString &note, const QString &stat);
    void showChart(const SystemMetrics &current, const std::vector<SystemMetrics> &history);
    void showMeans(const MeanWindow &window, const MachineCoverage &machine);
    void showCores(const SystemMetrics &current);
    void fitCoreBars();
    bool hasChart() const; ///< Something was known in the time that is shown.

    /// What the unit does not tell, and why; `Coverage::known` on a whole chip.
    Coverage loadCoverage(const SystemMetrics &current, const UnitReading &reading) const;
    void showDenied(Coverage coverage, const MachineCoverage &machine);
    PillContent pill(std::size_t index) const;

    Kind m_kind;
    QColor m_color;
    ChipInfo m_chip;
    CardText &m_note;
    CardText &m_stat;
    CardText &m_figure;
    CardText &m_state;
    CardText &m_subtitle;
    CoreBars *m_coreBars;
    Sparkline *m_chart;
    std::vector<UnitReading> m_readings;         ///< One a sample of the chart, for the pill.
    std::optional<MeanWindow::Key> m_shownMeans; ///< Absent while the chart shows samples.
    std::vector<double> m_cores;
};

} // namespace corvane
