#pragma once

#include "charts/HoverPill.h"
#include "charts/SeriesShape.h"
#include "charts/SparklineData.h"
#include "controls/AccessibleWidget.h"

#include <QBrush>
#include <QPen>
#include <QPointF>

#include <array>
#include <functional>
#include <optional>

class QSinglePointEvent;

namespace corvane {

/// The time-series chart of every card. It gets all its data at once, on each tick; the pointer or
/// the arrow keys move a cursor over it, which keeps its place when new data arrive. Without a
/// usable range or samples there are no series. Main thread.
class Sparkline : public AccessibleWidget {
    Q_OBJECT

public:
    /// Returns the content of the pill for the sample of that index, which may be beyond the end of
    /// a shorter series.
    using PillBuilder = std::function<PillContent(std::size_t index)>;

    explicit Sparkline(QWidget *parent = nullptr);

    using QWidget::show;
    void show(SparklineData chart);

    const SparklineData &shown() const { return m_data; }

    /// Without a builder there is a cursor but no pill. The builder is called again at every
    /// `show`, since the sample under a resting cursor is then another one.
    void setHoverPill(PillBuilder builder);

    /// The x of the cursor in the chart, in points; absent while there is no cursor.
    std::optional<double> cursorX() const { return m_cursorX; }

    /// Index of the sample nearest to the cursor; absent without a cursor or samples.
    std::optional<std::size_t> hoveredIndex() const;

    /// The samples in view as lines of time and values, as the pill shows them, separated by tabs:
    /// what "Copy" and Ctrl+C put on the clipboard. Empty without a builder.
    QString copiedText() const;

    /// The content of the pill at the cursor, or for the newest sample if there is no cursor.
    QString accessibleValue() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void moveEvent(QMoveEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void changeEvent(QEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    /// One run of a series ready to paint, made after the data or the size changed.
    struct Layer {
        SeriesShape shape;
        QBrush fill;
        QPen line;
    };

    QRectF plot() const; ///< The chart in the widget.
    void followPointer(const QSinglePointEvent &event);
    void keepToPointer();
    void setCursorX(std::optional<double> x);
    bool stepCursor(int key);
    void updatePill();
    void prepare();
    void addLayers(const SparklineData &drawn);

    bool hasRoomForLabel(std::size_t label, const std::array<double, 3> &widths) const;
    void paintBands(QPainter &painter) const;
    void paintLayers(QPainter &painter) const;
    void paintTimeLabels(QPainter &painter) const;
    void paintCursor(QPainter &painter) const;
    void paintPill(QPainter &painter) const;

    SparklineData m_data;
    PillBuilder m_buildPill;
    HoverPill m_pill;
    bool m_showsPill = false;         ///< There are a hovered sample and a builder.
    std::optional<QPointF> m_pointer; ///< Of the screen; absent if the keys moved the cursor.
    std::optional<double> m_cursorX;
    double m_plotWidth = 0;  ///< At the last resizing.
    bool m_prepared = false; ///< Layers and labels are those of the data, the size and the locale.
    std::vector<QPolygonF> m_bands;
    std::vector<Layer> m_layers;
    std::array<QString, 3> m_timeLabels;
};

} // namespace corvane
