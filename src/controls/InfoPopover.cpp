#include "controls/InfoPopover.h"

#include "ui/CardStyle.h"
#include "ui/TextLayout.h"
#include "ui/Theme.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <vector>

namespace corvane {

namespace {

constexpr double windowMargin = 8;
constexpr double arrowHeight = 8;
constexpr double arrowGap = 2;        ///< Between the anchor and the tip of the arrow.
constexpr double cornerDistance = 20; ///< Least distance of the arrow's middle from the sides.
constexpr double cornerRadius = 10;
constexpr double padding = 14;
constexpr TextLine titleLine{-0.75, 17}; ///< A rounded top would shift the text at scale 2.
constexpr double titleGap = 8;
constexpr double lineHeight = 16; ///< A line of 14 and 2 between lines.

MarkdownStyle bodyStyle()
{
    MarkdownStyle style = markdownStyle(11);
    style.lineHeight = lineHeight;
    style.codeBox = {0, 14};
    style.baseline = TextLine{0.5, 14}.baseline(style.plain);
    return style;
}

/// The blurred shadow below a popover. It is a widget of its own, so that clicks pass through it.
class PopoverShadow : public QWidget {
public:
    explicit PopoverShadow(QWidget *parent) : QWidget(parent)
    {
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }

    void surround(const QRectF &body)
    {
        setGeometry(body.toAlignedRect().adjusted(-blur, offset - blur, blur, offset + blur));
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        // The blurred rectangle is a product of two blurred edges, one across and one down.
        constexpr double darkness = 0.5;
        const std::vector<double> across = edge(width());
        const std::vector<double> down = edge(height());
        QImage image(size(), QImage::Format_ARGB32_Premultiplied);
        for (int y = 0; y < height(); ++y) {
            auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
            for (int x = 0; x < width(); ++x) {
                const double alpha = darkness * across[static_cast<std::size_t>(x)]
                    * down[static_cast<std::size_t>(y)];
                line[x] = qRgba(0, 0, 0, qRound(alpha * 255));
            }
        }
        QPainter(this).drawImage(0, 0, image);
    }

private:
    static constexpr int blur = 30;
    static constexpr int offset = 10;

    /// Darkness along one axis: 1 within the body, falling off across its edges.
    static std::vector<double> edge(int length)
    {
        const double sigma = blur / 2.0;
        std::vector<double> darkness;
        for (int i = 0; i < length; ++i) {
            const double fromStart = i + 0.5 - blur;
            const double fromEnd = i + 0.5 - (length - blur);
            const double scale = 1 / (sigma * std::sqrt(2.0));
            darkness.push_back((std::erf(fromStart * scale) - std::erf(fromEnd * scale)) / 2);
        }
        return darkness;
    }
};

} // namespace

PopoverPlacement placePopover(const QRectF &anchor, const QSizeF &body, const QSizeF &window)
{
    const double middle = anchor.center().x();
    const double rightmost = window.width() - windowMargin - body.width();
    const double left =
        std::round(std::max(std::min(middle - body.width() / 2, rightmost), windowMargin));
    const double tipX =
        std::clamp(middle, left + cornerDistance, left + body.width() - cornerDistance);

    constexpr double distance = arrowGap + arrowHeight;
    const double roomBelow = window.height() - windowMargin - anchor.bottom() - distance;
    const double roomAbove = anchor.top() - distance - windowMargin;
    const bool below = roomBelow >= body.height() || roomBelow >= roomAbove;
    const double top = below ? anchor.bottom() + distance : anchor.top() - distance - body.height();
    const double tipY = below ? anchor.bottom() + arrowGap : anchor.top() - arrowGap;
    return {QRectF(QPointF(left, top), body), QPointF(tipX, tipY), below};
}

InfoPopover::InfoPopover(const QString &title, const QString &text, QWidget *anchor,
                         const QRectF &place)
    : AccessibleWidget(anchor->window()),
      m_title(title),
      m_text(text),
      m_anchor(anchor),
      m_anchorPlace(place),
      m_shadow(new PopoverShadow(anchor->window())),
      m_style(bodyStyle()),
      m_layout(layOut(markdownRuns(text), m_style, width - 2 * padding))
{
    setAccessibleName(title);
    placeAtAnchor();
    m_shadow->show();
    m_shadow->raise();
    show();
    raise();
    qApp->installEventFilter(this);
}

InfoPopover::~InfoPopover()
{
    delete m_shadow;
}

QSize InfoPopover::bodySize() const
{
    return {width,
            static_cast<int>(2 * padding + titleLine.height + titleGap
                             + m_layout.lineCount * lineHeight)};
}

std::vector<AccessibleText> InfoPopover::accessibleTexts() const
{
    return {{{}, m_title, QRectF(rect())}, {{}, plainText(m_text), QRectF(rect())}};
}

bool InfoPopover::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        if (pressedElsewhere(watched,
                             static_cast<QMouseEvent *>(event)->globalPosition().toPoint()))
            emit dismissed();
        break;
    case QEvent::KeyPress:
        if (static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape && watched->isWidgetType()) {
            emit dismissed();
            return true;
        }
        break;
    case QEvent::WindowDeactivate:
        if (watched == window())
            emit dismissed();
        break;
    case QEvent::Resize:
        if (watched == m_anchor || watched == window())
            placeAtAnchor();
        break;
    case QEvent::Move:
        if (watched == m_anchor)
            placeAtAnchor();
        break;
    default:
        break;
    }
    return false;
}

/// Whether a press is outside both the popover and its button, which toggles the popover itself.
bool InfoPopover::pressedElsewhere(const QObject *watched, const QPoint &globalPosition) const
{
    if (!watched->isWidgetType() || watched == m_anchor)
        return false;
    return !outline(0).contains(mapFromGlobal(globalPosition));
}

void InfoPopover::placeAtAnchor()
{
    QWidget *host = parentWidget();
    const QRectF anchor = m_anchorPlace.translated(m_anchor->mapTo(host, QPoint(0, 0)));
    m_placement = placePopover(anchor, bodySize(), host->size());
    QRectF whole = m_placement.body;
    if (m_placement.below)
        whole.setTop(whole.top() - arrowHeight);
    else
        whole.setBottom(whole.bottom() + arrowHeight);
    setGeometry(whole.toAlignedRect());
    static_cast<PopoverShadow *>(m_shadow.data())->surround(m_placement.body);
    update();
}

/// The rounded body with its arrow, in coordinates of the popover.
QPainterPath InfoPopover::outline(double inset) const
{
    const QPointF origin = pos();
    const QRectF body = m_placement.body.translated(-origin).adjusted(inset, inset, -inset, -inset);
    const QPointF tip = m_placement.tip - origin;
    const double foot = m_placement.below ? body.top() : body.bottom();
    const double up = m_placement.below ? 1 : -1; // Towards the tip.
    const auto at = [&](double x, double height) {
        return QPointF(tip.x() + x, foot - up * height);
    };

    // The sides leave the edge in a small curve and meet in a tip of radius 1.5.
    QPainterPath arrow(at(-11, -0.5));
    arrow.lineTo(at(-11, 0));
    arrow.cubicTo(at(-8.4, 0), at(-7.2, 0.9), at(-5.8, 2.4));
    arrow.lineTo(at(-1.5, 7.3));
    arrow.cubicTo(at(-0.7, 8.2), at(0.7, 8.2), at(1.5, 7.3));
    arrow.lineTo(at(5.8, 2.4));
    arrow.cubicTo(at(7.2, 0.9), at(8.4, 0), at(11, 0));
    arrow.lineTo(at(11, -0.5));
    arrow.closeSubpath();
    QPainterPath box;
    box.addRoundedRect(body, cornerRadius - inset, cornerRadius - inset);
    return box.united(arrow);
}

void InfoPopover::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(outline(0), Theme::popoverFill);
    painter.setPen(QPen(Theme::popoverStroke, 1));
    painter.drawPath(outline(0.5));

    const QPointF origin = m_placement.body.topLeft() - QPointF(pos()) + QPointF(padding, padding);
    painter.setPen(Theme::textPrimary);
    const QFont titleFont = Theme::systemFont(13, QFont::DemiBold);
    drawText(painter, origin + QPointF(0, titleLine.baseline(titleFont)), m_title, titleFont,
             Digits::proportional);
    paintMarkdown(painter, origin + QPointF(0, titleLine.height + titleGap), m_layout, m_style,
                  Theme::textSecondary);
}

} // namespace corvane
