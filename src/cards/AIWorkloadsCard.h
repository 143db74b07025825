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

    RowList *list() const { return m_list; }

protected:
    void layOut() override;
    void paintShapes(QPainter &painter, const QRect &dirty) override;

private:
    void showEmptyState(bool empty);
    AccessibleText accessibleRow(int index) const;
    void paintRow(QPainter &painter, int index, const QRectF &place) const;
    QRectF tagRect() const;
    QRectF emptyIconRect() const;

    CardText &m_count;
    CardText &m_emptyLine;
    CardText &m_emptyHint;
    RowList *m_list;
    std::vector<AIWorkload> m_workloads; ///< Names and models as `singleLine` returns them.
};

} // namespace corvane
