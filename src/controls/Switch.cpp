#include "controls/Switch.h"

#include "threads/MainThread.h"
#include "ui/PixelGrid.h"
#include "ui/RoundedBox.h"
#include "ui/TextLayout.h"
#include "ui/Theme.h"

#include <QPainter>

namespace corvane {

namespace {

constexpr double trackWidth = 36;
constexpr double trackHeight = 20;
constexpr double knobSide = 16;
constexpr double knobGap = 2;    ///< Around the knob.
constexpr double ringOutset = 4; ///< Width of the focus ring and of the gap inside it.

} // namespace

Switch::Switch(const QString &text, QWidget *parent) : QCheckBox(text, parent)
{
    assertMainThread();
    setFocusPolicy(Qt::TabFocus); // A click leaves the focus, and its ring, where it is.
}

const QFont &Switch::textFont()
{
    static const QFont font = Theme::systemFont(13);
    return font;
}

double Switch::textBaseline(const QRectF &row)
{
    constexpr double lift = 0.5; // With few descenders this looks like the middle.
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
    painter.setPen(Theme::textPrimary);
    drawText(painter, {padding, textBaseline(rect())}, text(), textFont());

    const QRectF track =
        snappedToPixels(painter,
                        QRectF(width() - padding - trackWidth, (height() - trackHeight) / 2,
                               trackWidth, trackHeight));
    const double radius = track.height() / 2;
    fillRounded(painter, track, radius, isChecked() ? Theme::switchOn : Theme::switchOff);
    strokeRounded(painter, track, radius, Theme::switchStroke);
    const double left = isChecked() ? track.right() - knobGap - knobSide : track.left() + knobGap;
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawEllipse(QRectF(left, track.top() + knobGap, knobSide, knobSide));
    if (hasFocus())
        paintFocusRing(painter, track.adjusted(-ringOutset, -ringOutset, ringOutset, ringOutset),
                       radius + ringOutset);
}

} // namespace corvane
