#pragma once

#include "cards/Card.h"
#include "processes/AIWorkload.h"

namespace corvane {

class RowList;

/// The card of the processes that were recognised as local AI inference, a row each with framework,
/// model and memory.
class AIWorkloadsCard : public Card {
    Q_OBJECT

public:
    explicit AIWorkloadsCard(QWidget *parent = nullptr);

    using QWidget::show;

    /// Largest first.
    void show(const std::vector<AIWorkload> &workloads);

    /// A column of GPU memory beside that of RAM, where the workloads tell it. `label` names it,
    /// `total` is that of all GPUs in bytes; an empty label is for a machine without.
    void setGPUMemory(const QString &label, std::uint64_t total);

    RowList *list() const { return m_list; }

    /// All texts of a row that is painted into that rectangle.
    std::vector<CardText> rowTexts(int index, const QRectF &place) const;

protected:
    void layOut() override;

private:
    void showEmptyState(bool empty);
    AccessibleText accessibleRow(int index) const;
    bool hasGPUColumn() const;
    void paintRow(QPainter &painter, int index, const QRectF &place) const;

    void paintBar(QPainter &painter, const AIWorkload &workload, const QRectF &bar) const;

    /// The texts at the right of a row, and where those at the left have to end.
    std::vector<CardText> columnTexts(const AIWorkload &workload, const QRectF &place) const;
    double textsEnd(const std::vector<CardText> &columns, const QRectF &place) const;

    RowList *m_list;
    QString m_gpuLabel;
    std::uint64_t m_gpuTotal = 0;
    std::vector<AIWorkload> m_workloads; ///< Names and models as `singleLine` returns them.
};

} // namespace corvane
