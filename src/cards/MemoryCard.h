#pragma once

#include "cards/Card.h"
#include "cards/MemoryBreakdown.h"
#include "charts/HoverPill.h"
#include "records/SystemMetrics.h"

#include <array>

namespace corvane {

class Sparkline;

/// Space between the four chips (dot, label, byte count) of a row: 18 points, or down to 8 where
/// `chipsWidth`, the sum of their widths, leaves less.
double chipSpacing(double rowWidth, double chipsWidth);

/// The card of the physical memory: the used share, its breakdown, the memory pressure, swap, and
/// the used share over time.
class MemoryCard : public Card {
    Q_OBJECT

public:
    explicit MemoryCard(QWidget *parent = nullptr);

    using QWidget::show;

    /// History oldest first.
    void show(const SystemMetrics &current, const std::vector<SystemMetrics> &history);

    Sparkline *chart() const { return m_chart; }

    /// The breakdown bar in the card's coordinates.
    QRectF breakdownBar() const;

protected:
    void layOut() override;
    void paintShapes(QPainter &painter, const QRect &dirty) override;

private:
    /// A dot, a label and a byte count.
    struct Chip {
        QColor color;
        CardText *label;
        CardText *value;
        QString fullLabel; ///< `label` may be elided.
    };

    Chip addChip(const QString &label, const QColor &color);
    void showFigures(const MemorySnapshot &memory);
    void showChart(const std::vector<SystemMetrics> &history);
    void placeFigure();
    void placeChips();
    void paintBreakdownBar(QPainter &painter) const;
    QRectF badgeDot() const;
    QRectF chipDot(const Chip &chip) const;
    PillContent pill(std::size_t index) const;

    CardText &m_badge;
    CardText &m_figure;
    CardText &m_percentSign;
    std::array<Chip, 4> m_chips;
    CardText &m_swapLabel;
    CardText &m_swap;
    Sparkline *m_chart;
    std::array<MemorySegment, 4> m_segments;
};

} // namespace corvane
