#pragma once

#include "ui/AccessibleWidget.h"
#include "ui/TextLayout.h"

#include <QColor>

namespace corvane {

/// One line of text that a widget paints: what it says, how it looks and where it stands.
struct CardText {
    QString name = {}; ///< What it tells, for a screen reader; empty when it speaks for itself.
    QString text = {};
    QFont font = {};
    QColor color = {};
    Digits digits = Digits::fixedWidth;
    Qt::AlignmentFlag side = Qt::AlignLeft; ///< Or right, or horizontal centre.
    QPointF baseline = {}; ///< The end of the baseline on that side, or its middle.
    double mostWidth = 0;  ///< Elided to; 0: as wide as it is.
    bool silent = false;   ///< A caption that the name of another text repeats.

    double width() const;  ///< As shown.
    QRectF bounds() const; ///< All that painting can touch.
    bool isSpoken() const { return !text.isEmpty() && !silent; }
    AccessibleText spoken() const { return {name, text, bounds()}; }

    void paint(QPainter &painter) const;
};

} // namespace corvane
