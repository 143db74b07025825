#pragma once

#include "controls/AccessibleWidget.h"

#include <QColor>
#include <QRectF>
#include <QStringList>

#include <limits>
#include <optional>
#include <vector>

namespace corvane {

/// The content and the measures of a strip of core bars.
struct CoreBarsData {
    std::vector<double> values = {};        ///< Load of each core, 0…1.
    std::optional<QStringList> labels = {}; ///< Caption of each bar; absent: no row of captions.
    QColor color = {};
    double height = 52; ///< Height of the bars without the captions, in points.
    double barCornerRadius = 2;
    double spacing = 3; ///< Between bars and between captions, in points.
    /// In points. A strip of bars of that width ends at the right edge.
    double maxBarWidth = std::numeric_limits<double>::infinity();
    std::size_t coresPerBar = 1; ///< Neighbours that share a bar, which shows their mean.

    bool operator==(const CoreBarsData &) const = default;
};

/// A strip that fits a width: the more bars, the closer together; core numbers as captions if they
/// fit. Few bars stay narrow; many cores share bars by twos, fours and so on. It is 52 points high
/// with or without captions.
CoreBarsData fittedCoreBars(std::vector<double> values, const QColor &color, double width);

/// Load of each bar, 0…1.
std::vector<double> barLoads(const CoreBarsData &bars);

/// The part of a row that the strip takes, at its right end.
QRectF stripPlace(const CoreBarsData &bars, const QRectF &row);

/// Places of `count` items of equal width that fill the row.
std::vector<QRectF> evenRow(std::size_t count, const QRectF &row, double spacing);

/// The filled part of a bar, from its bottom: at least 2 points high, so that an idle core is
/// visible. A load that is not a number fills the bar.
QRectF barFill(const QRectF &bar, double value);

/// One small bar for every core, or for several, filled from the bottom by the load. An empty list
/// draws nothing. Main thread.
class CoreBars : public AccessibleWidget {
    Q_OBJECT

public:
    explicit CoreBars(QWidget *parent = nullptr);

    using QWidget::show;
    void show(CoreBarsData bars);

    const CoreBarsData &shown() const { return m_data; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

    /// The loads by core number, such as "0: 12%, 1: 40%".
    QString accessibleValue() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    CoreBarsData m_data;
};

} // namespace corvane
