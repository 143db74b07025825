#include "cards/Card.h"

#include "controls/InfoButton.h"
#include "controls/WindowBackground.h"
#include "ui/CardStyle.h"
#include "ui/Icon.h"
#include "ui/Theme.h"

#include <QPaintEvent>
#include <QPainter>

#include <algorithm>

namespace corvane {

namespace {

constexpr int iconSide = 16;
constexpr int iconGap = 6;
constexpr int statGap = 8; ///< Between a text of the header line and the info glyph.

QFont statFont()
{
    return Theme::systemFont(11);
}

} // namespace

Card::Card(const Heading &heading, const InfoText &info, QWidget *parent)
    : AccessibleWidget(parent),
      m_heading(heading),
      m_infoButton(new InfoButton(info, this))
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleName(heading.title);
    const QFont titleFont = Theme::systemFont(13, QFont::DemiBold);
    addText(
        {.text = heading.title,
         .font = titleFont,
         .color = heading.color,
         .digits = Digits::proportional,
         .baseline = {CardStyle::padding + iconSide + iconGap, headerLine.baseline(titleFont)}});
}

std::vector<AccessibleText> Card::accessibleTexts() const
{
    std::vector<AccessibleText> texts;
    for (const CardText &text : m_texts) {
        if (text.isAccessible())
            texts.push_back(text.accessible());
    }
    return texts;
}

QString Card::accessibleText(const QString &name) const
{
    const auto found = std::ranges::find(m_texts, name, &CardText::name);
    return found == m_texts.end() ? QString() : found->text;
}

CardText &Card::addText(const CardText &text)
{
    return m_texts.emplace_back(text);
}

void Card::setText(CardText &text, const QString &words)
{
    setText(text, words, text.color);
}

void Card::setText(CardText &text, const QString &words, const QColor &color)
{
    if (text.text == words && text.color == color)
        return;
    update(text.bounds().toAlignedRect());
    text.text = words;
    text.color = color;
    update(text.bounds().toAlignedRect());

    int index = 0;
    for (const CardText &other : m_texts) {
        if (&other == &text && other.isAccessible())
            announceText(index);
        index += other.isAccessible() ? 1 : 0;
    }
}

void Card::moveText(CardText &text, const QPointF &baseline)
{
    if (text.baseline == baseline)
        return;
    update(text.bounds().toAlignedRect());
    text.baseline = baseline;
    update(text.bounds().toAlignedRect());
}

void Card::updateShape(const QRectF &before, const QRectF &now)
{
    update((before | now).toAlignedRect().adjusted(-1, -1, 1, 1));
}

QPointF Card::headerStatEnd() const
{
    return {m_infoButton->x() + InfoButton::glyph().left() - statGap,
            headerLine.baseline(statFont())};
}

double Card::headerStatWidth() const
{
    return headerStatEnd().x() - titleText().bounds().right() - statGap;
}

CardText Card::headerStat(const QString &name)
{
    return {.name = name,
            .font = statFont(),
            .color = Theme::textSecondary,
            .alignment = Qt::AlignRight};
}

double Card::contentLeft() const
{
    return CardStyle::padding;
}

double Card::contentRight() const
{
    return width() - CardStyle::padding;
}

void Card::paintShapes(QPainter &, const QRect &) { }

void Card::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRect dirty = event->rect();
    paintWindowBackground(painter, *this, event->region());
    CardStyle::paint(painter, rect(), dirty);

    const QRectF icon(CardStyle::padding, CardStyle::padding + (headerHeight - iconSide) / 2.0,
                      iconSide, iconSide);
    if (icon.intersects(dirty))
        paintIcon(painter, m_heading.symbol, icon, m_heading.color, SymbolWeight::semibold);
    paintShapes(painter, dirty);
    for (const CardText &text : m_texts) {
        if (!text.text.isEmpty() && text.bounds().intersects(dirty))
            text.paint(painter);
    }
}

void Card::resizeEvent(QResizeEvent *)
{
    placeHeader();
    layOut();
    update();
}

void Card::moveEvent(QMoveEvent *)
{
    update(); // The piece of the background below it is another one.
}

void Card::placeHeader()
{
    constexpr double middle = CardStyle::padding + headerHeight / 2.0;
    const QRectF glyph = InfoButton::glyph();
    m_infoButton->move(qRound(contentRight() - glyph.right()), qRound(middle - glyph.center().y()));
}

} // namespace corvane
