#pragma once

#include "cards/Card.h"
#include "devices/PowerChart.h"
#include "timeline/EnergyLedger.h"

#include <array>

namespace corvane {

/// The card of power beside the cards of the units: the sum as a figure, a row for each part, and a
/// stacked chart.
class SmallPowerCard : public Card {
    Q_OBJECT

public:
    explicit SmallPowerCard(QWidget *parent = nullptr);

    using QWidget::show;

    void show(const SystemMetrics &current, const ChartHistory &history);

    /// What was measured of energy; shown from the next `show` on.
    void showEnergy(const EnergyReport &energy) { m_energy = energy; }

    /// Raises the scale as `show` does and changes nothing else.
    void recomputeYMax(const std::vector<SystemMetrics> &history);

    Sparkline *chart() const { return m_power.chart(); }

protected:
    void layOut() override;
    void paintShapes(QPainter &painter, const QRectF &dirty) override;

private:
    static constexpr std::size_t mostRows = 5;

    /// A label at the left and a value at the right.
    struct Row {
        CardText *label = nullptr;
        CardText *value = nullptr;
    };

    void showFigure(std::optional<double> watts);
    void showRows(const std::vector<PowerValue> &values, const QString &system);
    void showHint();
    void placeRows();
    void showStat();
    bool hasRoomForHint() const;
    double rowsLeft() const;
    QRectF dot(std::size_t row) const;
    QRectF hintIcon() const;

    PowerChart m_power;
    CardText &m_stat;
    EnergyReport m_energy;
    CardText &m_figure;
    CardText &m_unit;
    CardText &m_subtitle;
    std::array<Row, mostRows> m_rows;
    std::array<CardText *, 2> m_hint;
    std::vector<PowerPart> m_parts;
    QString m_systemSource; ///< Of the row for the whole machine, which is the last.
    bool m_hasSystemRow = false;
    bool m_isLocked = false; ///< The CPU's watts.
};

} // namespace corvane
