#pragma once

#include "ui/AccessibleWidget.h"

#include <functional>

class QPainter;

namespace corvane {

/// Where the rows of a list lie. Plain arithmetic without a widget.
struct RowGeometry {
    int rowHeight = 0;
    int gap = 0; ///< Between rows.
    int count = 0;
    int viewHeight = 0;

    int contentHeight() const { return count > 0 ? count * (rowHeight + gap) - gap : 0; }
    int mostOffset() const;             ///< How far the list can be scrolled; 0 when all fits.
    int top(int row, int offset) const; ///< In the view.

    /// Top and height of the scroll thumb; no height when all fits.
    std::pair<double, double> thumb(int offset) const;
};

/// A scrolling list of painted rows, as tall as its place allows: it fades out at its foot while
/// there is more below, and shows how far it is with a thin thumb in its right margin. The wheel,
/// the keys and a drag of the thumb scroll it. The card that owns it paints and speaks the rows.
/// Main thread.
class RowList : public AccessibleWidget {
    Q_OBJECT

public:
    static constexpr int fadeHeight = 18;

    struct Rows {
        int height = 0;
        int gap = 0;
        int margin = 0; ///< On both sides: the thumb lies in it, and the focus ring.
        /// Paints a row into a rectangle; what would lie outside is cut off.
        std::function<void(QPainter &, int row, const QRectF &)> paint = {};
        std::function<AccessibleText(int row)> speak = {};
    };

    RowList(const QString &name, Rows rows, QWidget *parent);

    int rowCount() const { return m_geometry.count; }
    int offset() const { return m_offset; }

    void setRowCount(int count);

    /// Repaints that row if it can be seen.
    void updateRow(int row);

    void scrollTo(int offset);

    std::vector<AccessibleText> accessibleTexts() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    QRectF rowRect(int row) const;
    QRectF thumbRect() const;
    void paintRows(QPainter &painter, const QRectF &part) const;
    void paintFade(QPainter &painter, const QRectF &part) const;

    Rows m_rows;
    RowGeometry m_geometry;
    int m_offset = 0;
    int m_wheelRest = 0;                  ///< Eighths of a degree that no whole point was made of.
    std::optional<double> m_dragged = {}; ///< Where within the thumb it was taken.
};

} // namespace corvane
