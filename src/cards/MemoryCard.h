#pragma once

#include "cards/Card.h"
#include "cards/MemoryBreakdown.h"
#include "charts/HoverPill.h"
#include "records/SystemMetrics.h"

#include <array>

namespace corvane {

class Sparkline;

/// Space between chips that share a row of that width: 18, or as much less as they need, but never
/// below 8.
double chipSpacing(double rowWidth, double chipsWidth);

/// The physical memory: how much is used, for what, how hard the system is pressed for it, and the
/// window's course. Told its data; main thread.
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
        QString fullLabel; ///< The label may be shown elided.
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
