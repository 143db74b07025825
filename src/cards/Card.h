#pragma once

#include "cards/CardText.h"
#include "ui/AccessibleWidget.h"
#include "ui/CardStyle.h"

#include <deque>

namespace corvane {

class InfoButton;
struct InfoText;

/// What every card of the dashboard is made of: the frame, the header line with icon, title and
/// info button, and the texts that a subclass adds. It paints its own piece of the window's
/// background, so that nothing beneath it is painted when a number changes.
/// Main thread.
class Card : public AccessibleWidget {
    Q_OBJECT

public:
    struct Heading {
        QString symbol = {};
        QString title = {};
        QColor color = {};
    };

    InfoButton *infoButton() const { return m_infoButton; }

    std::vector<AccessibleText> accessibleTexts() const override;

    /// The shown text of that name; empty when there is none.
    QString accessibleText(const QString &name) const;

protected:
    static constexpr int headerHeight = 18;
    static constexpr int bodyTop = 46; ///< Padding, header line and the space below it.

    Card(const Heading &heading, const InfoText &info, QWidget *parent);

    /// A text of the card; the reference stays good. An empty one is neither shown nor spoken.
    CardText &addText(const CardText &text);

    /// Changes a text and repaints it, if it is another one.
    void say(CardText &text, const QString &words);

    /// The same with its colour, which may say something too.
    void say(CardText &text, const QString &words, const QColor &color);

    /// Moves a text and repaints it, if it stands elsewhere.
    void moveText(CardText &text, const QPointF &baseline);

    /// Repaints what a shape covered and what it covers now, with all that antialiasing spreads
    /// where a point is no whole number of pixels.
    void updateShape(const QRectF &before, const QRectF &now);

    /// Where a text at the right of the header line ends: 8 left of the info glyph.
    QPointF headerStatEnd() const;
    double headerStatWidth() const; ///< Of the space between the title and that end.
    static CardText headerStat(const QString &name);
    const CardText &titleText() const { return m_texts.front(); }

    double contentLeft() const;
    double contentRight() const;

    /// Places what depends on the card's size; called whenever that changes.
    virtual void layOut() = 0;

    /// Paints what is not a text, beneath the texts. What lies outside `dirty` is not needed.
    virtual void paintShapes(QPainter &painter, const QRect &dirty);

    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void moveEvent(QMoveEvent *event) override;

private:
    /// Half a point above the middle of the header looks like its middle.
    static constexpr TextLine headerLine{CardStyle::padding - 0.5, headerHeight};

    void placeHeader();

    Heading m_heading;
    InfoButton *m_infoButton;
    std::deque<CardText> m_texts; ///< The title first.
};

} // namespace corvane
