#include "app/Switch.h"

#include "cards/PixelGrid.h"
#include "cards/TextLayout.h"
#include "cards/Theme.h"

#include <QPainter>

namespace corvane {

namespace {

constexpr double trackWidth = 36;
constexpr double trackHeight = 20;
constexpr double knobSide = 16;
constexpr double knobGap = 2; ///< Around the knob.
constexpr double ringGap = 2;
constexpr double ringWidth = 2;

void drawCapsule(QPainter &painter, const QRectF &capsule)
{
    painter.drawRoundedRect(capsule, capsule.height() / 2, capsule.height() / 2);
}

void strokeCapsule(QPainter &painter, const QRectF &capsule, const QColor &color, double width)
{
    const double inset = width / 2;
    painter.setPen(QPen(color, width));
    painter.setBrush(Qt::NoBrush);
    drawCapsule(painter, capsule.adjusted(inset, inset, -inset, -inset));
}

} // namespace

Switch::Switch(const QString &text, QWidget *parent) : QCheckBox(text, parent)
{
    setFocusPolicy(Qt::TabFocus); // A click leaves the focus, and its ring, where it is.
}

const QFont &Switch::textFont()
{
    static const QFont font = Theme::systemFont(13);
    return font;
}

double Switch::textBaseline(const QRectF &row)
{
    constexpr double lift = 0.5; // Few descenders: a little above the middle looks like it.
    return TextLine{row.top() - lift, row.height()}.baseline(textFont());
}

bool Switch::hitButton(const QPoint &position) const
{
    return rect().contains(position);
}

void Switch::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isEnabled() ? 1 : Theme::disabledOpacity);
    painter.setPen(Theme::textPrimary());
    drawText(painter, {padding, textBaseline(rect())}, text(), textFont());

    const QRectF track =
        snappedToPixels(painter,
                        QRectF(width() - padding - trackWidth, (height() - trackHeight) / 2,
                               trackWidth, trackHeight));
    painter.setPen(Qt::NoPen);
    painter.setBrush(isChecked() ? Theme::switchOn() : Theme::switchOff());
    drawCapsule(painter, track);
    strokeCapsule(painter, track, Theme::switchStroke(), 1);
    const double left = isChecked() ? track.right() - knobGap - knobSide : track.left() + knobGap;
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawEllipse(QRectF(left, track.top() + knobGap, knobSide, knobSide));
    if (hasFocus()) {
        constexpr double outset = ringGap + ringWidth;
        strokeCapsule(painter, track.adjusted(-outset, -outset, outset, outset), Theme::focusRing(),
                      ringWidth);
    }
}

} // namespace corvane
