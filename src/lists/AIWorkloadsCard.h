#pragma once

#include "cards/Card.h"
#include "processes/AIWorkload.h"
#include "records/MachineCoverage.h"
#include "records/ModelRoom.h"

#include <array>

namespace corvane {

class RowList;

/// The card of the processes that were recognised as local AI inference, a row each with framework,
/// model and memory. A line below says which room is left for a model, while the rows leave the
/// place for it. A row's tool tip says from where each of its values comes.
class AIWorkloadsCard : public Card {
    Q_OBJECT

public:
    explicit AIWorkloadsCard(QWidget *parent = nullptr);

    using QWidget::show;

    /// Largest first.
    void show(const std::vector<AIWorkload> &workloads);

    /// Where the workloads tell what they hold of the GPUs, there is a column for it beside that of
    /// RAM. It has the name of that memory on this machine.
    void setMachine(const MachineCoverage &machine);

    /// Memory in use on the GPUs that belongs to nobody known; where it is much, it has a row
    /// behind the workloads.
    void setOtherGPUMemory(std::uint64_t bytes);

    /// Absent where it is not known.
    void setRoom(const std::optional<ModelRoom> &room);

    RowList *list() const { return m_list; }

    /// All texts of a row that is painted into that rectangle.
    std::vector<CardText> rowTexts(int index, const QRectF &place) const;

protected:
    void layOut() override;

private:
    void showEmptyState(bool empty);
    AccessibleText accessibleRow(int index) const;
    bool hasGPUColumn() const;
    bool hasOtherRow() const;
    bool isOtherRow(int index) const { return index == static_cast<int>(m_workloads.size()); }
    void updateRowCount();
    void paintRow(QPainter &painter, int index, const QRectF &place) const;
    void paintBar(QPainter &painter, const std::optional<std::uint64_t> &bytes,
                  const QRectF &bar) const;

    std::vector<CardText> otherTexts(const QRectF &place) const;

    /// The texts at the right of a row, and where those at the left have to end.
    std::vector<CardText> columnTexts(const AIWorkload &workload, const QRectF &place) const;
    std::array<CardText, 2> gpuTexts(const std::optional<std::uint64_t> &bytes,
                                     const QRectF &place) const;
    double textsEnd(const std::vector<CardText> &columns, const QRectF &place) const;

    RowList *m_list;
    CardText &m_foot;
    std::optional<ModelRoom> m_room;
    QString m_hint; ///< Which runners to start, while there is no workload.
    QString m_gpuLabel;
    std::uint64_t m_gpuTotal = 0;
    std::uint64_t m_otherBytes = 0;      ///< Of the GPUs' memory.
    std::vector<AIWorkload> m_workloads; ///< Names and models as `singleLine` returns them.
};

} // namespace corvane
