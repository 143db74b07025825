#pragma once

#include "cards/Card.h"
#include "cards/ChipRow.h"
#include "cards/SegmentBar.h"
#include "timeline/ChartHistory.h"

namespace corvane {

class Sparkline;
struct SparklineData;

/// Base of the cards of an amount of memory: the used share as a large figure, used and total
/// amount, the bar that divides it, chips with the parts, a line of text, and a chart.
class CapacityCard : public Card {
    Q_OBJECT

public:
    Sparkline *chart() const { return m_chart; }

    /// The bar in the card's coordinates.
    QRectF breakdownBar() const;

protected:
    static constexpr int chartTop = 168;
    static constexpr double barTop = 94;

    CapacityCard(const Heading &heading, const InfoText &info, const QString &figureName,
                 QWidget *parent);

    /// The share in per cent; absent: an en dash. A lower bound is marked as one.
    void showFigure(std::optional<double> percent, bool isLowerBound = false);

    /// Words with an icon in the place of the figure.
    void showState(const QString &symbol, const QString &words);

    /// At the right of the figure's line; an empty text is left out.
    void showAmounts(const QString &used, const QString &total);

    void showSegments(std::vector<BarSegment> segments);

    /// Chips `below` points lower than beside a single bar.
    void showChips(std::vector<Chip> chips, double below = 0);

    /// A sentence in the place of the chips; empty: none.
    void showMessage(const QString &message);

    /// The line above the chart: a faint label and its value.
    void showLine(const QString &label, const QString &value);

    /// Values in per cent.
    void showChart(SparklineData chart, std::vector<std::optional<double>> percents);

    /// The means of a measure in per cent; does nothing if the chart shows them already.
    void showMeans(const MeanWindow &window, Measure measure);

    void setHasBar(bool hasBar);

    void layOut() override;
    void paintShapes(QPainter &painter, const QRectF &dirty) override;

private:
    /// The texts of one chip, which may be unused.
    struct ShownChip {
        CardText *label = nullptr;
        CardText *value = nullptr;
        QColor color = {};
    };

    void placeFigure();
    void placeAmounts();
    void placeLine();
    void placeChips();
    QRectF chipDot(const ShownChip &chip) const;
    QRectF stateIcon() const;

    CardText &m_figure;
    CardText &m_percentSign;
    CardText &m_state;
    CardText &m_used;
    CardText &m_slash;
    CardText &m_total;
    std::vector<ShownChip> m_shownChips;
    CardText &m_message;
    CardText &m_lineLabel;
    CardText &m_line;
    Sparkline *m_chart;
    std::optional<MeanWindow::Key> m_shownMeans; ///< Absent while the chart shows samples.
    QString m_stateSymbol;                       ///< Empty: the card shows its figure.
    std::vector<Chip> m_chips;
    double m_chipsBelow = 0;
    std::vector<BarSegment> m_segments;
    bool m_hasBar = true;
};

} // namespace corvane
