#pragma once

#include "cards/Card.h"
#include "cards/Utilization.h"
#include "charts/HoverPill.h"

namespace corvane {

class CoreBars;
class Sparkline;

/// Load of one compute unit: the figure of now, a chart of the window and, for the CPU, a bar for
/// every core. Told its data; main thread.
class UtilizationCard : public Card {
    Q_OBJECT

public:
    using Kind = UtilizationKind;

    explicit UtilizationCard(Kind kind, QWidget *parent = nullptr,
                             const ChipInfo &chip = ChipInfo::current());

    using QWidget::show;

    /// History oldest first.
    void show(const SystemMetrics &current, const std::vector<SystemMetrics> &history);

    Sparkline *chart() const { return m_chart; }
    CoreBars *coreBars() const { return m_coreBars; }

protected:
    void layOut() override;

private:
    /// What the pill says of one sample.
    struct Sample {
        double timestamp = 0;
        double percent = 0;
        double watts = 0;
        double megahertz = 0;
    };

    void showChart(const std::vector<SystemMetrics> &history);
    void showCores(const SystemMetrics &current);
    void fitCoreBars();
    PillContent pill(std::size_t index) const;

    Kind m_kind;
    QColor m_color;
    ChipInfo m_chip;
    CardText &m_stat;
    CardText &m_figure;
    CardText &m_subtitle;
    CoreBars *m_coreBars;
    Sparkline *m_chart;
    std::vector<Sample> m_samples;
    std::vector<double> m_cores;
};

} // namespace corvane
