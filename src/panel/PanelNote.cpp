#include "panel/PanelNote.h"

#include "ui/TextLayout.h"
#include "ui/Theme.h"

#include <QPainter>

namespace corvane {

namespace {

constexpr TextLine line{0, 13};
constexpr double left = 15; ///< Where the titles of the rows begin.

} // namespace

PanelNote::PanelNote(QWidget *parent) : AccessibleWidget(parent)
{
    setFixedHeight(static_cast<int>(line.bottom()));
}

void PanelNote::show(const QString &text, const QString &explanation)
{
    if (explanation != accessibleDescription()) {
        setToolTip(plainToolTip(explanation));
        setAccessibleDescription(explanation);
    }
    if (text == m_text)
        return;
    m_text = text;
    announceText(0);
    update();
}

std::vector<AccessibleText> PanelNote::accessibleTexts() const
{
    return {{.value = m_text, .place = rect()}};
}

void PanelNote::paintEvent(QPaintEvent *)
{
    static const QFont font = Theme::systemFont(10);
    QPainter painter(this);
    painter.setPen(Theme::textSecondary);
    drawText(painter, QPointF(left, line.baseline(font)), m_text, font);
}

} // namespace corvane
