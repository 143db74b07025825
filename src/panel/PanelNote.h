#pragma once

#include "controls/AccessibleWidget.h"

namespace corvane {

/// A line of small text under the panel's rows, whose tool tip explains it.
class PanelNote : public AccessibleWidget {
    Q_OBJECT

public:
    explicit PanelNote(QWidget *parent = nullptr);

    void show(const QString &text, const QString &explanation);

    std::vector<AccessibleText> accessibleTexts() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_text;
};

} // namespace corvane
