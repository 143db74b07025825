#pragma once

#include "app/ReadOut.h"
#include "cards/SpokenWidget.h"

namespace corvane {

/// One metric of the panel: a dot in its colour, its title, its value and a detail below. Told by
/// the panel; a screen reader reads the whole row.
class PanelRow : public SpokenWidget {
    Q_OBJECT

public:
    explicit PanelRow(QWidget *parent = nullptr);

    void show(const ReadOutRow &row);

    std::vector<SpokenText> spokenTexts() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    ReadOutRow m_row;
};

} // namespace corvane
