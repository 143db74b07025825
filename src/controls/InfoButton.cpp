#include "controls/InfoButton.h"

#include "controls/InfoPopover.h"
#include "threads/MainThread.h"
#include "ui/ContentArea.h"
#include "ui/Icon.h"
#include "ui/RoundedBox.h"
#include "ui/Theme.h"

#include <QKeyEvent>
#include <QPainter>

namespace corvane {

using namespace Qt::StringLiterals;

InfoButton::InfoButton(const InfoText &info, QWidget *parent) : QAbstractButton(parent)
{
    assertMainThread();
    setFocusPolicy(Qt::TabFocus); // A click leaves the focus, and its ring, where it is.
    resize(side, side);
    setInfo(info);
    connect(this, &QAbstractButton::clicked, this, &InfoButton::toggle);
}

InfoButton::~InfoButton()
{
    close();
}

void InfoButton::setInfo(const InfoText &info)
{
    if (info == m_info)
        return;
    close();
    m_info = info;
    setToolTip(plainToolTip(info.title));
    setAccessibleName(info.title);
    setAccessibleDescription(plainText(info.text));
}

InfoPopover *InfoButton::popover() const
{
    return m_popover;
}

void InfoButton::toggle()
{
    if (m_popover) {
        close();
        return;
    }
    const QString supplement = m_supplement ? m_supplement() : QString();
    const QString text = supplement.isEmpty() ? m_info.text : m_info.text + u"\n\n"_s + supplement;
    m_popover = new InfoPopover(m_info.title, text, this,
                                clickArea().translated(contentArea(*this).topLeft()));
    connect(m_popover, &InfoPopover::dismissed, this, &InfoButton::close);
}

void InfoButton::close()
{
    if (!m_popover)
        return;
    // It is deleted later, since it may be filtering an event right now.
    m_popover->hide();
    m_popover->deleteLater();
    m_popover.clear();
}

void InfoButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor &color = underMouse() ? Theme::textSecondary : Theme::textTertiary;
    const QRectF area = contentArea(*this);
    paintIcon(painter, u"info.circle"_s, glyph().translated(area.topLeft()), color);
    if (hasFocus())
        paintFocusRing(painter, area, 6);
}

void InfoButton::enterEvent(QEnterEvent *event)
{
    update();
    QAbstractButton::enterEvent(event);
}

void InfoButton::leaveEvent(QEvent *event)
{
    update();
    QAbstractButton::leaveEvent(event);
}

void InfoButton::hideEvent(QHideEvent *event)
{
    close();
    QAbstractButton::hideEvent(event);
}

void InfoButton::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

} // namespace corvane
