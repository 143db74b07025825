#pragma once

#include "cards/Card.h"
#include "devices/PowerChart.h"
#include "timeline/EnergyLedger.h"

namespace corvane {

/// The wide card of power: a legend and a stacked chart of the parts that exist.
class PowerCard : public Card {
    Q_OBJECT

public:
    explicit PowerCard(QWidget *parent = nullptr);

    using QWidget::show;

    void show(const SystemMetrics &current, const ChartHistory &history);

    /// What was measured of energy; shown from the next `show` on.
    void showEnergy(const EnergyReport &energy) { m_energy = energy; }

    /// Raises the scale as `show` does and changes nothing else.
    void recomputeYMax(const std::vector<SystemMetrics> &history);

    double stableYMax() const { return m_power.stableYMax(); }
    Sparkline *chart() const { return m_power.chart(); }

protected:
    void layOut() override;
    void paintShapes(QPainter &painter, const QRectF &dirty) override;

private:
    void showLegend(const MachineCoverage &machine);
    void placeLegend();
    void placeSums();

    PowerChart m_power;
    CardText &m_stat;
    CardText &m_system;
    CardText &m_energyToday;
    EnergyReport m_energy;
    bool m_isWhole = true; ///< As in `MachineCoverage`.
    double m_legendEnd = 0;
    std::vector<CardText *> m_legend; ///< As many as there were parts at the most.
    std::vector<PowerPart> m_parts;
};

} // namespace corvane
