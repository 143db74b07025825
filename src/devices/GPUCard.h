#pragma once

#include "cards/Card.h"
#include "charts/HoverPill.h"
#include "records/SystemMetrics.h"
#include "timeline/ChartHistory.h"

namespace corvane {

class Sparkline;

/// The card of several GPUs: a column for each with its load, watts, temperature and, up to four,
/// its load over time. More stand in two rows of columns without charts.
class GPUCard : public Card {
    Q_OBJECT

public:
    explicit GPUCard(QWidget *parent = nullptr);

    using QWidget::show;

    void show(const SystemMetrics &current, const ChartHistory &history);

    /// Of the GPU with that index.
    Sparkline *chart(std::size_t index) const { return m_columns[index].chart; }

protected:
    void layOut() override;

private:
    /// One GPU.
    struct Column {
        CardText *name = nullptr;
        CardText *figure = nullptr;
        CardText *subtitle = nullptr;
        Sparkline *chart = nullptr;
    };

    void showMachine(const MachineCoverage &machine);
    void addColumn();
    void showColumn(std::size_t index, const std::optional<ChipReading> &chip);
    void clearColumns(std::size_t from);
    void showChart(std::size_t index, const std::vector<SystemMetrics> &history);
    void showMeans(const std::optional<MeanWindow> &window);
    std::size_t columnsInRow() const;
    bool hasCharts() const;
    PillContent pill(std::size_t index, std::size_t sample) const;

    CardText &m_stat;
    std::vector<Column> m_columns;
    std::vector<GPUCoverage> m_gpus;
    /// Watts of each GPU in each sample of the charts.
    std::vector<std::vector<std::optional<double>>> m_watts;
    std::optional<MeanWindow::Key> m_shownMeans; ///< Absent while the charts show samples.
};

} // namespace corvane
