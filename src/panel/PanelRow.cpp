#include "panel/PanelRow.h"

#include "ui/TextLayout.h"
#include "ui/Theme.h"

#include <QFontMetricsF>
#include <QPainter>

namespace corvane {

namespace {

constexpr TextLine valueLine{0, 15};
constexpr TextLine detailLine{15, 13};
constexpr double dotSize = 7;
constexpr double dotGap = 8;

} // namespace

PanelRow::PanelRow(QWidget *parent) : AccessibleWidget(parent)
{
    setFixedHeight(static_cast<int>(detailLine.bottom()));
}

void PanelRow::show(const MetricRow &row)
{
    if (row == m_row)
        return;
    m_row = row;
    setFixedHeight(static_cast<int>((row.detail.isEmpty() ? valueLine : detailLine).bottom()));
    setToolTip(plainToolTip(row.explanation));
    announceText(0);
    update();
}

std::vector<AccessibleText> PanelRow::accessibleTexts() const
{
    return {{.value = inOneLine(m_row), .place = rect(), .description = m_row.explanation}};
}

void PanelRow::paintEvent(QPaintEvent *)
{
    static const QFont titleFont = Theme::systemFont(12, QFont::Medium);
    static const QFont valueFont = Theme::systemFont(12, QFont::DemiBold);
    static const QFont detailFont = Theme::systemFont(10);
    const double baseline = valueLine.baseline(valueFont);

    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_row.color);
    const double middle = baseline - QFontMetricsF(titleFont).capHeight() / 2;
    painter.drawEllipse(QRectF(0, middle - dotSize / 2, dotSize, dotSize));

    painter.setPen(Theme::textPrimary);
    drawText(painter, QPointF(dotSize + dotGap, baseline), m_row.title, titleFont);
    drawTextRight(painter, QPointF(width(), baseline), m_row.value, valueFont);
    painter.setPen(Theme::textTertiary);
    drawTextRight(painter, QPointF(width(), detailLine.baseline(detailFont)), m_row.detail,
                  detailFont);
}

} // namespace corvane
