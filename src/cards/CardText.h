#pragma once

#include "controls/AccessibleWidget.h"
#include "ui/TextLayout.h"

#include <QColor>

namespace corvane {

/// One line of text that a widget paints: its words, its look and its place, in points.
struct CardText {
    QString name = {}; ///< Accessible name of the value; empty for a text that needs none.
    QString text = {};
    QFont font = {};
    QColor color = {};
    Digits digits = Digits::fixedWidth;
    Qt::AlignmentFlag alignment = Qt::AlignLeft; ///< Left, right or horizontally centred.
    QPointF baseline = {};    ///< Left end, right end or middle of the baseline, by the alignment.
    double maxWidth = 0;      ///< A wider text is elided; 0: no limit.
    bool isCaption = false;   ///< Its words are the accessible name of another text.
    QString explanation = {}; ///< Shown as a tool tip over the text; may be empty.

    double width() const;  ///< Of the text as it is painted.
    QRectF bounds() const; ///< Encloses every pixel that painting touches.
    bool isAccessible() const { return !text.isEmpty() && !isCaption; }
    AccessibleText accessible() const { return {name, text, bounds(), explanation}; }

    void paint(QPainter &painter) const;
};

} // namespace corvane
