#include "controls/PanelButton.h"

#include "threads/MainThread.h"
#include "ui/Icon.h"
#include "ui/RoundedBox.h"
#include "ui/TextLayout.h"
#include "ui/Theme.h"

#include <QKeyEvent>
#include <QPainter>

#include <cmath>

namespace corvane {

namespace {

constexpr double buttonHeight = 28;
constexpr double radius = 6;
constexpr double padding = 12;
constexpr double symbolSize = 14;
constexpr double iconGap = 6;

const QFont &textFont()
{
    static const QFont font = Theme::systemFont(12, QFont::Medium);
    return font;
}

double fillOpacity(const PanelButton &button)
{
    if (!button.isEnabled())
        return 0.08;
    if (button.isDown())
        return 0.05;
    return button.underMouse() ? 0.12 : 0.08;
}

} // namespace

PanelButton::PanelButton(const QString &text, const QString &symbol, QWidget *parent)
    : QAbstractButton(parent),
      m_symbol(symbol)
{
    assertMainThread();
    setText(text);
    setAccessibleName(text);
    setFocusPolicy(Qt::StrongFocus);
    setFixedHeight(static_cast<int>(buttonHeight));
}

QSize PanelButton::sizeHint() const
{
    return {static_cast<int>(std::ceil(contentWidth() + 2 * padding)),
            static_cast<int>(buttonHeight)};
}

void PanelButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    fillRounded(painter, rect(), radius, Theme::white(fillOpacity(*this)));
    strokeRounded(painter, rect(), radius, Theme::white(0.06));
    if (hasFocus())
        paintFocusRing(painter, rect(), radius);

    painter.setOpacity(isEnabled() ? 1 : Theme::disabledOpacity);
    double x = (width() - contentWidth()) / 2;
    if (!m_symbol.isEmpty()) {
        paintIcon(painter, m_symbol,
                  QRectF(x, (buttonHeight - symbolSize) / 2, symbolSize, symbolSize),
                  Theme::textPrimary);
        x += symbolSize + iconGap;
    }
    painter.setPen(Theme::textPrimary);
    drawText(painter, QPointF(x, TextLine{0, buttonHeight}.baseline(textFont())), text(),
             textFont());
}

void PanelButton::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

void PanelButton::enterEvent(QEnterEvent *)
{
    update();
}

void PanelButton::leaveEvent(QEvent *)
{
    update();
}

double PanelButton::contentWidth() const
{
    const double icon = m_symbol.isEmpty() ? 0 : symbolSize + iconGap;
    return icon + textWidth(text(), textFont());
}

} // namespace corvane
