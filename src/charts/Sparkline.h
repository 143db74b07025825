#pragma once

#include "charts/HoverPill.h"
#include "charts/SeriesShape.h"
#include "charts/SparklineData.h"
#include "ui/AccessibleValue.h"

#include <QBrush>
#include <QPen>
#include <QWidget>

#include <array>
#include <functional>
#include <optional>

namespace corvane {

/// The time-series chart of every card. It is handed its data whole, once a tick; the pointer or
/// the arrow keys move a cursor over it, which stays where it is when new data arrive. Degenerate
/// data draw less. Main thread.
class Sparkline : public QWidget, public AccessibleValue {
    Q_OBJECT

public:
    /// Builds the content of the pill for the sample of that index, which may lie beyond the end of
    /// a shorter series.
    using PillBuilder = std::function<PillContent(std::size_t index)>;

    explicit Sparkline(QWidget *parent = nullptr);

    using QWidget::show;
    void show(SparklineData chart);

    const SparklineData &shown() const { return m_data; }

    /// Without a builder there is a cursor line but no pill. The builder is asked anew at every
    /// `show`, since the sample under a resting cursor is then another one.
    void setHoverPill(PillBuilder builder);

    /// Horizontal place of the cursor in points; absent while nothing hovers.
    std::optional<double> cursorX() const { return m_cursorX; }

    /// The sample that the cursor speaks of.
    std::optional<std::size_t> hoveredIndex() const;

    /// What the pill says at the cursor, or of the newest sample when there is no cursor.
    QString accessibleValue() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void changeEvent(QEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    /// One series as it is painted, made when the data or the size change.
    struct Layer {
        SeriesShape shape;
        QBrush fill;
        QPen line;
    };

    void followPointer(double x);
    void setCursorX(std::optional<double> x);
    bool stepCursor(int key);
    void updatePill();
    void prepare();

    void paintLayers(QPainter &painter) const;
    void paintTimeLabels(QPainter &painter) const;
    void paintCursor(QPainter &painter) const;
    void paintPill(QPainter &painter) const;

    SparklineData m_data;
    PillBuilder m_buildPill;
    HoverPill m_pill;
    bool m_showsPill = false; ///< There is a sample under the cursor, and a builder.
    std::optional<double> m_cursorX;
    bool m_prepared = false; ///< The two below fit the data, the size and the locale.
    std::vector<Layer> m_layers;
    std::array<QString, 3> m_timeLabels;
};

} // namespace corvane
