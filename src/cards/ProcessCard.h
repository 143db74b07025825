#pragma once

#include "cards/Card.h"
#include "processes/ProcessRow.h"

namespace corvane {

class RowList;

/// The processes with the largest memory footprints, a row each with a bar relative to the largest
/// of them. Told its data; main thread.
class ProcessCard : public Card {
    Q_OBJECT

public:
    explicit ProcessCard(QWidget *parent = nullptr);

    using QWidget::show;

    /// Largest first. `totalMemory` is the machine's, in bytes.
    void show(const std::vector<ProcessRow> &processes, std::uint64_t totalMemory);

    RowList *list() const { return m_list; }

protected:
    void layOut() override;

private:
    /// One row as it is shown.
    struct Row {
        QString name = {};
        QString bytes = {};
        QString share = {};
        double fraction = 0; ///< Of the largest process.

        friend bool operator==(const Row &, const Row &) = default;
    };

    void paintRow(QPainter &painter, int index, const QRectF &place) const;

    CardText &m_empty;
    RowList *m_list;
    std::vector<Row> m_rows;
};

/// `memory` in relation to the largest footprint, 0…1; 0 when that is 0.
double footprintFraction(std::uint64_t memory, std::uint64_t largest);

} // namespace corvane
