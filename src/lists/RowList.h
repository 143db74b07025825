#pragma once

#include "controls/AccessibleWidget.h"

#include <functional>

class QHelpEvent;
class QPainter;

namespace corvane {

/// Geometry of a list of equally high rows, in points. Plain arithmetic without a widget.
struct RowGeometry {
    int rowHeight = 0;
    int gap = 0; ///< Between rows.
    int count = 0;
    int viewHeight = 0;

    int contentHeight() const { return count > 0 ? count * (rowHeight + gap) - gap : 0; }
    int maxOffset() const;              ///< Largest scroll offset; 0 if all rows fit.
    int top(int row, int offset) const; ///< Relative to the view.

    /// Top and height of the scroll thumb; the height is 0 if all rows fit.
    std::pair<double, double> thumb(int offset) const;
};

/// A scrolling list of painted rows. It fades out at the bottom while there are more rows below,
/// and shows the position with a thin thumb in its right margin. Wheel, keys and dragging the thumb
/// scroll it. A right click copies a row as text, Ctrl+C the row under the pointer or, without one,
/// all rows. The card that owns it provides what the rows look like and their accessible texts.
class RowList : public AccessibleWidget {
    Q_OBJECT

public:
    static constexpr int fadeHeight = 18;

    struct Rows {
        int height = 0;
        int gap = 0;
        int margin = 0; ///< Left and right of the rows, for the thumb and the focus ring.
        /// Paints a row into a rectangle, to which the painter is clipped.
        std::function<void(QPainter &, int row, const QRectF &)> paint = {};
        /// Its description is the tool tip of the row.
        std::function<AccessibleText(int row)> accessibleRow = {};
    };

    RowList(const QString &name, Rows rows, QWidget *parent);

    int rowCount() const { return m_geometry.count; }
    int offset() const { return m_offset; }

    void setRowCount(int count);

    /// Repaints a row if it is in view.
    void updateRow(int row);

    void scrollTo(int offset);

    std::vector<AccessibleText> accessibleTexts() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    QRectF rowRect(int row) const;
    std::optional<int> rowAt(const QPointF &place) const; ///< Absent between and below the rows.
    void showToolTip(const QHelpEvent &help);
    QString copiedText(const QPointF &place) const; ///< Of the row there; of all if there is none.
    QRectF thumbRect() const;
    void paintRows(QPainter &painter, const QRectF &part) const;
    void paintFade(QPainter &painter, const QRectF &part) const;

    Rows m_rows;
    RowGeometry m_geometry;
    int m_offset = 0;
    int m_wheelRemainder = 0; ///< Eighths of a degree that are less than one point of scrolling.
    std::optional<double> m_dragOffset =
        {}; ///< Offset of the pointer within the thumb while dragging.
};

} // namespace corvane
