#pragma once

#include "controls/AccessibleWidget.h"

#include <optional>

namespace corvane {

/// Top of the panel: the program's name, the chip's name below it, and the total power.
class PanelHeader : public AccessibleWidget {
    Q_OBJECT

public:
    explicit PanelHeader(QWidget *parent = nullptr);

    /// `watts` is absent when a part of the total is denied.
    void show(std::optional<double> watts);

    std::vector<AccessibleText> accessibleTexts() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_power;
};

} // namespace corvane
