#pragma once

#include "cards/CardText.h"
#include "ui/MetricText.h"

namespace corvane {

/// Top of the panel: the program's name and the total power, below them the chip's name and what
/// the power is the sum of, where that is not all.
class PanelHeader : public AccessibleWidget {
    Q_OBJECT

public:
    explicit PanelHeader(const QString &chipName, QWidget *parent = nullptr);

    void show(const PowerText &power);

    /// The tool tip, which a screen reader reads as the description; empty: none.
    void showEnergy(const QString &tip);

    /// All texts that are painted: name, watts, chip, and what the watts are the sum of.
    std::vector<CardText> texts() const;

    std::vector<AccessibleText> accessibleTexts() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    const QString m_chipName;
    PowerText m_power;
};

} // namespace corvane
