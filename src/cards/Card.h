#pragma once

#include "cards/CardText.h"
#include "controls/AccessibleWidget.h"
#include "ui/CardStyle.h"

#include <deque>
#include <functional>

namespace corvane {

class InfoButton;
struct InfoText;

/// Base of the dashboard's cards: the frame, the header line with icon, title and info button, and
/// the texts that a subclass adds. A card is opaque: it paints its piece of the window's background
/// itself, so that the window is not repainted when a number changes. Cards show the data that the
/// window passes to them and read nothing themselves. Its edges may lie between points.
class Card : public AccessibleWidget {
    Q_OBJECT

public:
    struct Heading {
        QString symbol = {};
        QString title = {};
        QColor color = {};
    };

    const Heading &heading() const { return m_heading; }

    /// All texts that are painted on the card itself, the title first; those without words are not
    /// painted.
    const std::deque<CardText> &texts() const { return m_texts; }

    std::vector<AccessibleText> accessibleTexts() const override;

    /// The text with that accessible name; empty if there is none.
    QString accessibleText(const QString &name) const;

protected:
    static constexpr int headerHeight = 18;
    static constexpr int bodyTop = 46; ///< Padding, header line and the space below it.

    Card(const Heading &heading, const InfoText &info, QWidget *parent);

    /// Another title with the same icon; does nothing if it is the same.
    void setTitle(const QString &title);

    /// Another explanation; does nothing if it is the same.
    void setInfo(const InfoText &info);

    /// What the explanation says of the moment; asked when it is opened.
    void setInfoSupplement(std::function<QString()> supplement);

    /// What the card cannot show and why, as its tool tip and accessible description; one sentence
    /// each.
    void setNotes(const QStringList &notes);

    /// Adds a text; the reference stays valid as long as the card. An empty text is neither painted
    /// nor accessible.
    CardText &addText(const CardText &text);

    /// The card's size, which its shapes and texts are placed in, from the top left corner.
    QSizeF cardSize() const;

    /// Places a child.
    void place(QWidget &part, const QRectF &rect) const;

    /// The content from that height on, down to the padding.
    QRectF contentBelow(double top) const;

    /// Repaints a part of the card.
    void updateArea(const QRectF &part);

    /// Replaces the words of a text and repaints it; does nothing if they are the same.
    void setText(CardText &text, const QString &words);

    /// Replaces words and colour.
    void setText(CardText &text, const QString &words, const QColor &color);

    /// Moves a text and repaints it; does nothing if it is there already.
    void moveText(CardText &text, const QPointF &baseline);

    /// Repaints the places of a shape before and after a change, with a margin for the antialiasing
    /// at scales where a point is not a whole number of pixels.
    void updateShape(const QRectF &before, const QRectF &now);

    /// A small count on a box behind the title, with its accessible name; without words it is gone.
    void showTag(const QString &name, const QString &words);

    /// An icon, a line and a hint, centred in the body as one block: for a card that has nothing to
    /// show. Without a line it is gone.
    void showNotice(const QString &symbol, const QString &line, const QString &hint);

    /// Right end of the baseline of a text at the right of the header line.
    QPointF headerStatEnd() const;
    double headerStatWidth() const; ///< Room for that text behind the title.
    static CardText headerStat(const QString &name);
    const CardText &titleText() const { return m_texts.front(); }

    static constexpr double contentLeft() { return CardStyle::padding; }
    double contentRight() const;

    /// Places what depends on the card's size; called when the size changes.
    virtual void layOut() = 0;

    /// Paints what is not a text, below the texts. Only what intersects `dirty` needs painting.
    virtual void paintShapes(QPainter &painter, const QRectF &dirty);

    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void moveEvent(QMoveEvent *event) override;

private:
    /// Half a point above the middle of the header looks like its middle.
    static constexpr TextLine headerLine{CardStyle::padding - 0.5, headerHeight};

    void placeHeader();
    void placeTag();
    QRectF tagRect() const;
    void placeNotice();
    QRectF noticeIcon() const;

    Heading m_heading;
    InfoButton *m_infoButton;
    std::deque<CardText> m_texts; ///< The title first. A deque, since its elements do not move.
    CardText *m_tag = nullptr;    ///< Null until there is a tag.
    QString m_noticeSymbol;
    CardText *m_noticeLine = nullptr; ///< Null until there is a notice.
    CardText *m_noticeHint = nullptr;
};

} // namespace corvane
