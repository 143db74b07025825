#pragma once

#include "cards/CardText.h"
#include "dashboard/QuickNumbers.h"
#include "dashboard/WindowChoice.h"

#include <vector>

namespace corvane {

/// The dashboard's first line: logo, name and chip, the choice of the window of time, and quick
/// numbers at the right, one for each quantity that the machine has.
class DashboardHeader : public AccessibleWidget {
    Q_OBJECT

public:
    explicit DashboardHeader(const QString &chipName, QWidget *parent = nullptr);

    using QWidget::show;
    void show(const SystemMetrics &current);

    /// All texts that are painted: name, chip, a note on the machine, and the label and value of
    /// each quick number.
    std::vector<CardText> texts() const;

    std::vector<AccessibleText> accessibleTexts() const override;

    void setHistoryWindow(HistoryWindow window);
    QWidget *lastInTabOrder() const;

signals:
    void historyWindowChosen(corvane::HistoryWindow window);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    /// One quick number: a label above a value, both right-aligned in their column.
    struct QuickStat {
        CardText label;
        CardText value;
        double minWidth = 0; ///< Of the column, so that it does not move when a digit changes.

        double width() const;
    };

    void setNumbers(const std::vector<QuickNumber> &numbers);
    void setNote(const QString &note);
    void layOut();

    CardText m_name;
    CardText m_chip;
    CardText m_note;
    std::vector<QuickStat> m_stats;
    WindowChoice *m_choice;
};

} // namespace corvane
