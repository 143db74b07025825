#include "panel/PanelRow.h"

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

std::vector<CardText> PanelRow::texts() const
{
    static const QFont titleFont = Theme::systemFont(12, QFont::Medium);
    static const QFont valueFont = Theme::systemFont(12, QFont::DemiBold);
    static const QFont detailFont = Theme::systemFont(10);
    const double baseline = valueLine.baseline(valueFont);
    const auto right = static_cast<double>(width());
    return {{.text = m_row.title,
             .font = titleFont,
             .color = Theme::textPrimary,
             .baseline = {dotSize + dotGap, baseline}},
            {.text = m_row.value,
             .font = valueFont,
             .color = Theme::textPrimary,
             .alignment = Qt::AlignRight,
             .baseline = {right, baseline}},
            {.text = m_row.detail,
             .font = detailFont,
             .color = Theme::textTertiary,
             .alignment = Qt::AlignRight,
             .baseline = {right, detailLine.baseline(detailFont)}}};
}

void PanelRow::paintEvent(QPaintEvent *)
{
    const std::vector<CardText> all = texts();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_row.color);
    const CardText &title = all.front();
    const double middle = title.baseline.y() - QFontMetricsF(title.font).capHeight() / 2;
    painter.drawEllipse(QRectF(0, middle - dotSize / 2, dotSize, dotSize));
    for (const CardText &text : all)
        text.paint(painter);
}

} // namespace corvane
