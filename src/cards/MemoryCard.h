#pragma once

#include "cards/CapacityCard.h"
#include "charts/HoverPill.h"
#include "timeline/ChartHistory.h"

namespace corvane {

/// The card of the physical memory: the used share, its breakdown, the memory pressure, swap, and
/// the used share over time. Beside an Apple chip's unified memory it is titled "Memory" and shows
/// the amounts too.
class MemoryCard : public CapacityCard {
    Q_OBJECT

public:
    explicit MemoryCard(QWidget *parent = nullptr);

    using QWidget::show;

    void show(const SystemMetrics &current, const ChartHistory &history);

protected:
    void layOut() override;
    void paintShapes(QPainter &painter, const QRectF &dirty) override;

private:
    void showHistory(const ChartHistory &history);
    void showFigures(const MemorySnapshot &memory);
    void showPressure(MemoryPressure pressure);
    QRectF badgeDot() const;
    PillContent pill(std::size_t index) const;

    CardText &m_badge;
};

} // namespace corvane
