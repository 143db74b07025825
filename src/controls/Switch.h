#pragma once

#include <QCheckBox>

namespace corvane {

/// A row of the settings that is on or off: its text on the left, the switch on the right. A click
/// anywhere in the row toggles it, and so does the space bar. Main thread.
class Switch : public QCheckBox {
    Q_OBJECT

public:
    explicit Switch(const QString &text, QWidget *parent = nullptr);

    /// Place and font of a row's text, also in rows without a switch.
    static constexpr int padding = 12;
    static const QFont &textFont();
    static double textBaseline(const QRectF &row);

protected:
    void paintEvent(QPaintEvent *event) override;
    bool hitButton(const QPoint &position) const override;
};

} // namespace corvane
