#include "cards/Card.h"

#include "controls/InfoButton.h"
#include "controls/WindowBackground.h"
#include "ui/CardStyle.h"
#include "ui/ContentArea.h"
#include "ui/Icon.h"
#include "ui/RoundedBox.h"
#include "ui/Theme.h"

#include <QPaintEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>
#include <utility>

namespace corvane {

namespace {

constexpr int iconSide = 16;
constexpr int iconGap = 6;
constexpr int statGap = 8; ///< Between a text of the header line and the info glyph.

constexpr double tagGap = 8;
constexpr double tagPadding = 6;
constexpr double tagHeight = 16;
constexpr double tagRadius = 5;
constexpr double noticeIconSide = 24;
constexpr double noticeHeight = 68;
constexpr TextLine noticeLine{34, 15.5}; ///< From the top of the notice, as is the hint.
constexpr TextLine noticeHint{54, 14};

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
        if (!text.isAccessible())
            continue;
        texts.push_back(text.accessible());
        texts.back().place.translate(contentArea(*this).topLeft());
    }
    return texts;
}

QString Card::accessibleText(const QString &name) const
{
    const auto found = std::ranges::find(m_texts, name, &CardText::name);
    return found == m_texts.end() ? QString() : found->text;
}

void Card::setTitle(const QString &title)
{
    if (title == m_heading.title)
        return;
    m_heading.title = title;
    setAccessibleName(title);
    setText(m_texts.front(), title);
    placeTag();
    layOut(); // What stands behind the title moves.
    update();
}

void Card::setInfo(const InfoText &info)
{
    m_infoButton->setInfo(info);
}

void Card::setInfoSupplement(std::function<QString()> supplement)
{
    m_infoButton->setSupplement(std::move(supplement));
}

void Card::setNotes(const QStringList &notes)
{
    const QString text = notes.join(u'\n');
    if (text == accessibleDescription())
        return;
    setToolTip(plainToolTip(text));
    setAccessibleDescription(text);
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
    updateArea(text.bounds());
    text.text = words;
    text.color = color;
    updateArea(text.bounds());

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
    updateArea(text.bounds());
    text.baseline = baseline;
    updateArea(text.bounds());
}

void Card::updateShape(const QRectF &before, const QRectF &now)
{
    updateArea((before | now).adjusted(-1, -1, 1, 1));
}

void Card::showTag(const QString &name, const QString &words)
{
    if (!m_tag) {
        m_tag = &addText({.name = name,
                          .font = Theme::systemFont(10, QFont::DemiBold),
                          .color = Theme::textSecondary});
        placeTag();
    }
    const QRectF before = tagRect();
    setText(*m_tag, words);
    if (tagRect() != before)
        updateShape(before, tagRect());
}

void Card::placeTag()
{
    if (m_tag)
        m_tag->baseline = {titleText().bounds().right() + tagGap + tagPadding - 2,
                           TextLine{CardStyle::padding, headerHeight}.baseline(m_tag->font)};
}

QRectF Card::tagRect() const
{
    if (!m_tag || m_tag->text.isEmpty())
        return {};
    const double top = CardStyle::padding + (headerHeight - tagHeight) / 2.0;
    return {m_tag->baseline.x() - tagPadding, top, m_tag->width() + 2 * tagPadding, tagHeight};
}

void Card::showNotice(const QString &symbol, const QString &line, const QString &hint)
{
    if (!m_noticeLine) {
        if (line.isEmpty())
            return;
        m_noticeLine = &addText({.font = Theme::systemFont(12, QFont::Medium),
                                 .color = Theme::textPrimary,
                                 .alignment = Qt::AlignHCenter});
        m_noticeHint = &addText({.font = Theme::systemFont(11),
                                 .color = Theme::textTertiary,
                                 .alignment = Qt::AlignHCenter});
        placeNotice();
    }
    if (m_noticeSymbol != symbol || m_noticeLine->text.isEmpty() != line.isEmpty())
        updateArea(noticeIcon());
    m_noticeSymbol = symbol;
    setText(*m_noticeLine, line);
    setText(*m_noticeHint, hint);
}

void Card::placeNotice()
{
    if (!m_noticeLine)
        return;
    const QRectF icon = noticeIcon();
    const double middle = cardSize().width() / 2;
    for (CardText *line : {m_noticeLine, m_noticeHint})
        line->maxWidth = contentRight() - contentLeft();
    m_noticeLine->baseline = {middle, icon.top() + noticeLine.baseline(m_noticeLine->font)};
    m_noticeHint->baseline = {middle, icon.top() + noticeHint.baseline(m_noticeHint->font)};
}

QRectF Card::noticeIcon() const
{
    const double top = (bodyTop + cardSize().height() - CardStyle::padding - noticeHeight) / 2;
    return {(cardSize().width() - noticeIconSide) / 2, top, noticeIconSide, noticeIconSide};
}

QPointF Card::headerStatEnd() const
{
    return {contentRight() - InfoButton::glyph().width() - statGap,
            headerLine.baseline(statFont())};
}

double Card::headerStatWidth() const
{
    const double titleEnd = std::max(titleText().bounds().right(), tagRect().right());
    return headerStatEnd().x() - titleEnd - statGap;
}

CardText Card::headerStat(const QString &name)
{
    return {.name = name,
            .font = statFont(),
            .color = Theme::textSecondary,
            .alignment = Qt::AlignRight};
}

QSizeF Card::cardSize() const
{
    return contentArea(*this).size();
}

void Card::place(QWidget &part, const QRectF &rect) const
{
    placeContent(part, rect.translated(contentArea(*this).topLeft()));
}

QRectF Card::contentBelow(double top) const
{
    return {QPointF(contentLeft(), top),
            QPointF(contentRight(), cardSize().height() - CardStyle::padding)};
}

void Card::updateArea(const QRectF &part)
{
    update(part.translated(contentArea(*this).topLeft()).toAlignedRect());
}

double Card::contentRight() const
{
    return cardSize().width() - CardStyle::padding;
}

void Card::paintShapes(QPainter &, const QRectF &) { }

/// A text with an explanation of its own shows that instead of the card's notes.
bool Card::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip)
        return AccessibleWidget::event(event);
    const auto *help = static_cast<QHelpEvent *>(event);
    const QPointF origin = contentArea(*this).topLeft();
    const auto text = std::ranges::find_if(m_texts, [&](const CardText &each) {
        return each.isAccessible() && !each.explanation.isEmpty()
            && each.bounds().contains(help->pos() - origin);
    });
    if (text == m_texts.end())
        return AccessibleWidget::event(event);
    QToolTip::showText(help->globalPos(), plainToolTip(text->explanation), this,
                       text->bounds().translated(origin).toAlignedRect());
    return true;
}

void Card::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF area = contentArea(*this);
    const QRectF dirty = QRectF(event->rect()).translated(-area.topLeft());
    paintWindowBackground(painter, *this, event->region());
    painter.translate(area.topLeft());
    CardStyle::paint(painter, {{}, area.size()}, dirty);

    const QRectF icon(CardStyle::padding, CardStyle::padding + (headerHeight - iconSide) / 2.0,
                      iconSide, iconSide);
    if (icon.intersects(dirty))
        paintIcon(painter, m_heading.symbol, icon, m_heading.color, SymbolWeight::semibold);
    paintShapes(painter, dirty);
    if (tagRect().intersects(dirty))
        fillRounded(painter, tagRect(), tagRadius, Theme::tag);
    if (m_noticeLine && !m_noticeLine->text.isEmpty() && noticeIcon().intersects(dirty))
        paintIcon(painter, m_noticeSymbol, noticeIcon(), Theme::textSecondary, SymbolWeight::light);
    for (const CardText &text : m_texts) {
        if (!text.text.isEmpty() && text.bounds().intersects(dirty))
            text.paint(painter);
    }
}

void Card::resizeEvent(QResizeEvent *)
{
    placeHeader();
    placeTag();
    placeNotice();
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
    constexpr double side = InfoButton::side;
    place(*m_infoButton, {contentRight() - glyph.right(), middle - glyph.center().y(), side, side});
}

} // namespace corvane
