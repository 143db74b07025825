#pragma once

#include "cards/Card.h"
#include "charts/HoverPill.h"
#include "records/SystemMetrics.h"

#include <array>

namespace corvane {

class Sparkline;

/// The highest total power of the history in watts, each sample averaged with its neighbours so
/// that a single spike does not set the scale. 0 for an empty history.
double peakTotal(const std::vector<SystemMetrics> &history);

/// Upper bound in watts of a chart with that peak: 18 % above it, rounded up to 5, 10 or a multiple
/// of 5, 10 or 25.
double powerScale(double peak);

/// The card of the compute power: a stacked chart of CPU, GPU and Neural Engine. Its scale never
/// shrinks while the card exists.
class PowerCard : public Card {
    Q_OBJECT

public:
    explicit PowerCard(QWidget *parent = nullptr);

    using QWidget::show;

    /// History oldest first.
    void show(const SystemMetrics &current, const std::vector<SystemMetrics> &history);

    /// Raises the scale as `show` does and changes nothing else.
    void recomputeYMax(const std::vector<SystemMetrics> &history);

    double stableYMax() const { return m_stableYMax; }
    Sparkline *chart() const { return m_chart; }

protected:
    void layOut() override;
    void paintShapes(QPainter &painter, const QRect &dirty) override;

private:
    void raiseYMax(double peak);
    void showChart(const std::vector<SystemMetrics> &history);
    PillContent pill(std::size_t index) const;

    double m_stableYMax = 5;
    CardText &m_stat;
    std::array<CardText *, 3> m_legend;
    Sparkline *m_chart;
    std::vector<DeniedParts> m_denied = {}; ///< Of each sample of the chart.
};

} // namespace corvane
