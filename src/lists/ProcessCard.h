#pragma once

#include "cards/Card.h"
#include "processes/ProcessRow.h"

namespace corvane {

class RowList;

/// The card of the processes with the largest memory footprints, a row each with a bar relative to
/// the largest of them.
class ProcessCard : public Card {
    Q_OBJECT

public:
    explicit ProcessCard(QWidget *parent = nullptr);

    using QWidget::show;

    /// Largest first. `totalMemory` is the machine's, in bytes, for the shares.
    void show(const std::vector<ProcessRow> &processes, std::uint64_t totalMemory);

    /// The column of GPU memory, where any process tells its own; an empty label is for a machine
    /// without graphics cards.
    void setGPUMemoryLabel(const QString &label);

    RowList *list() const { return m_list; }

protected:
    void layOut() override;

private:
    /// The texts of one row.
    struct Row {
        QString name = {};
        QString bytes = {};
        QString share = {};
        QString gpuBytes = {}; ///< Empty: not told.
        double fraction = 0;   ///< Relative to the largest process, 0…1.

        friend bool operator==(const Row &, const Row &) = default;
    };

    void paintRow(QPainter &painter, int index, const QRectF &place) const;

    CardText &m_empty;
    RowList *m_list;
    QString m_gpuLabel;
    bool m_hasGPUColumn =
        false; ///< Stays while the machine has cards, so that the bars keep still.
    std::vector<Row> m_rows;
};

/// `memory` as a fraction of `largest`; 0 if that is 0.
double footprintFraction(std::uint64_t memory, std::uint64_t largest);

} // namespace corvane
