#pragma once

#include "cards/CapacityCard.h"
#include "charts/HoverPill.h"
#include "records/GPUHolders.h"
#include "records/MachineTotals.h"
#include "records/SystemMetrics.h"

namespace corvane {

/// The memory card's twin for the memory of GPUs: the VRAM of graphics cards, or what an integrated
/// GPU may use of the machine's memory. With several GPUs there is a bar for each.
class GPUMemoryCard : public CapacityCard {
    Q_OBJECT

public:
    explicit GPUMemoryCard(QWidget *parent = nullptr);

    using QWidget::show;

    void show(const SystemMetrics &current, const ChartHistory &history);

    /// Who holds the memory; shown from the next `show` on.
    void setHolders(const std::vector<GPUHolders> &holders);

protected:
    void layOut() override;
    void paintShapes(QPainter &painter, const QRectF &dirty) override;

private:
    /// One GPU among several.
    struct Row {
        CardText *number = nullptr;
        CardText *used = nullptr;
        CardText *slash = nullptr;
        CardText *total = nullptr;
        std::vector<BarSegment> segments = {};
    };

    /// Where the rows stand.
    struct RowGrid {
        std::size_t columns = 1;
        double pitch = 20;
        bool hasFigures = true;
    };

    void showHeading(const MachineCoverage &machine);
    void showNow(const SystemMetrics &current);
    void showUse(const GPUMemoryTotal &memory, const std::optional<ChipReading> &chip);
    void showHistory(const ChartHistory &history);
    void showRows(const std::optional<ChipReading> &chip);
    void setRow(std::size_t index, const GPUMetrics *metrics);
    std::vector<BarSegment> segments(const GPUCoverage &gpu, const GPUMetrics *metrics) const;
    std::vector<Chip> chips(const GPUMemoryTotal &memory,
                            const std::optional<ChipReading> &chip) const;
    const GPUHolders *holdersOf(const GPUCoverage &gpu) const;

    /// Of the GPUs that tell their memory; absent if it is not known of all of them.
    std::optional<std::uint64_t> aiBytes(const std::optional<ChipReading> &chip) const;
    RowGrid rowGrid() const;
    QRectF rowPlace(std::size_t index) const;
    QRectF rowBar(std::size_t index) const;
    void placeRows();
    PillContent pill(std::size_t index) const;

    CardText &m_stat;
    std::vector<Row> m_rows;
    std::vector<GPUCoverage> m_gpus;
    std::vector<GPUHolders> m_holders;
    std::vector<GPUMemoryTotal> m_totals; ///< Of each sample of the chart.
    std::optional<double> m_awakeUntil;   ///< When the memory was last known.
    bool m_isIntegrated = false;
};

} // namespace corvane
