#pragma once

#include "cards/CardText.h"
#include "ui/MetricText.h"

namespace corvane {

/// One metric of the panel: a dot in its colour, its title, its value and a detail below the value,
/// without which it is one line high. Its explanation is the tool tip. The whole row is one
/// accessible text.
class PanelRow : public AccessibleWidget {
    Q_OBJECT

public:
    explicit PanelRow(QWidget *parent = nullptr);

    void show(const MetricRow &row);

    /// All texts that are painted: title, value and detail.
    std::vector<CardText> texts() const;

    std::vector<AccessibleText> accessibleTexts() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    MetricRow m_row;
};

} // namespace corvane
