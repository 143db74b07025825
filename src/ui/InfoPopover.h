#pragma once

#include "ui/AccessibleWidget.h"
#include "ui/Markdown.h"

#include <QPainterPath>
#include <QPointer>

namespace corvane {

/// Where a popover lies in its window. Coordinates are the window's.
struct PopoverPlacement {
    QRectF body = {};  ///< Without the arrow.
    QPointF tip = {};  ///< Of the arrow.
    bool below = true; ///< Under its anchor, the arrow on the top edge.

    friend bool operator==(const PopoverPlacement &, const PopoverPlacement &) = default;
};

/// Centred under `anchor` and pushed until it keeps 8 from the window's edges; the tip stays under
/// the anchor's middle as far as the body's corners allow. Over the anchor when it has no room
/// below and more above. Pure.
PopoverPlacement placePopover(const QRectF &anchor, const QSizeF &body, const QSizeF &window);

/// A box over a window's content with a heading and a text with inline marks. Made open by its info
/// button, which owns it; asks to be closed on a press outside it, on Escape and when its window is
/// left. Main thread.
class InfoPopover : public AccessibleWidget {
    Q_OBJECT

public:
    static constexpr int width = 340;

    /// `place` is the anchor's part, in its coordinates, that the arrow points at.
    InfoPopover(const QString &title, const QString &text, QWidget *anchor, const QRectF &place);
    ~InfoPopover() override;

    /// Width and height of the body.
    QSize bodySize() const;

    std::vector<AccessibleText> accessibleTexts() const override;

signals:
    void dismissed();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    bool pressedElsewhere(const QObject *watched, const QPoint &globalPosition) const;
    void placeAtAnchor();
    QPainterPath outline(double inset) const;

    QString m_title;
    QString m_text;
    QWidget *m_anchor;
    QRectF m_anchorPlace;
    QPointer<QWidget> m_shadow; ///< Beneath it; the window may delete it first.
    MarkdownStyle m_style;
    MarkdownLayout m_layout;
    PopoverPlacement m_placement;
};

} // namespace corvane
