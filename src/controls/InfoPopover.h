#pragma once

#include "controls/AccessibleWidget.h"
#include "ui/Markdown.h"

#include <QPainterPath>
#include <QPointer>

namespace corvane {

/// The place of a popover, in coordinates of its window.
struct PopoverPlacement {
    QRectF body = {};  ///< Without the arrow.
    QPointF tip = {};  ///< The point of the arrow.
    bool below = true; ///< The body is below the anchor, the arrow on its top edge.

    friend bool operator==(const PopoverPlacement &, const PopoverPlacement &) = default;
};

/// Centres the body below `anchor` and moves it until it is 8 points from the edges of the window;
/// the tip stays below the middle of the anchor as far as the corners of the body allow. Above the
/// anchor if there is too little room below it and more above. Pure.
PopoverPlacement placePopover(const QRectF &anchor, const QSizeF &body, const QSizeF &window);

/// A box over the content of a window, with a heading and a text in inline Markdown. It is open
/// from its construction on. Its info button owns it and closes it on `dismissed`, which follows a
/// press outside it, Escape, and the deactivation of its window. Main thread.
class InfoPopover : public AccessibleWidget {
    Q_OBJECT

public:
    static constexpr int width = 340;

    /// The arrow points to `place`, a part of the anchor in the coordinates of the anchor.
    InfoPopover(const QString &title, const QString &text, QWidget *anchor, const QRectF &place);
    ~InfoPopover() override;

    /// Size of the body without the arrow.
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
    QPointer<QWidget> m_shadow; ///< Lies beneath this; the window may delete it first.
    MarkdownStyle m_style;
    MarkdownLayout m_layout;
    PopoverPlacement m_placement;
};

} // namespace corvane
