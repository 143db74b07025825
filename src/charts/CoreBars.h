#pragma once

#include "ui/AccessibleValue.h"

#include <QColor>
#include <QRectF>
#include <QStringList>
#include <QWidget>

#include <optional>
#include <vector>

namespace corvane {

/// What a strip of core bars shows and how it is set.
struct CoreBarsData {
    std::vector<double> values = {};        ///< One load a core, 0…1.
    std::optional<QStringList> labels = {}; ///< One caption a bar; absent: no caption row.
    QColor color = {};
    double height = 52; ///< Of the bars alone, in points.
    double barCornerRadius = 2;
    double spacing = 3; ///< Between bars and between captions.

    bool operator==(const CoreBarsData &) const = default;
};

/// The strip as it suits a width: bars closer together the more there are, and core numbers as
/// captions where they fit; 52 points high with or without them.
CoreBarsData fittedCoreBars(std::vector<double> values, const QColor &color, double width);

/// Places of `count` equal items that split a row of that width.
std::vector<QRectF> evenRow(std::size_t count, const QRectF &row, double spacing);

/// The filled part of a bar, at its foot: at least 2 points, so that an idle core can be seen. A
/// load that is not a number fills the bar.
QRectF barFill(const QRectF &bar, double value);

/// One small bar for every core, filled from its foot by the core's load. It is told its data; an
/// empty list draws nothing. Main thread.
class CoreBars : public QWidget, public AccessibleValue {
    Q_OBJECT

public:
    explicit CoreBars(QWidget *parent = nullptr);

    using QWidget::show;
    void show(CoreBarsData bars);

    const CoreBarsData &shown() const { return m_data; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

    /// The loads in percent by core, such as "0: 12%, 1: 40%".
    QString accessibleValue() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    CoreBarsData m_data;
};

} // namespace corvane
