#include "dashboard/DashboardHeader.h"

#include "controls/Logo.h"
#include "controls/WindowBackground.h"
#include "ui/NumberText.h"
#include "ui/Theme.h"

#include <QPaintEvent>
#include <QPainter>

#include <algorithm>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr double logoSide = 28;
constexpr double gap = 12; ///< Between the items of the line.
constexpr double statGap = 18;
constexpr TextLine nameLine{0, 18};
constexpr TextLine chipLine{20, 14};
constexpr TextLine labelLine{0, 13};
constexpr TextLine valueLine{15, 17};

CardText statLabel(const QString &text)
{
    CardText label{.text = text,
                   .font = Theme::systemFont(9, QFont::DemiBold),
                   .color = Theme::textTertiary,
                   .alignment = Qt::AlignRight};
    label.font.setLetterSpacing(QFont::AbsoluteSpacing, 0.5);
    return label;
}

CardText statValue(const QString &name, const QColor &color)
{
    return {.name = name,
            .font = Theme::systemFont(13, QFont::DemiBold),
            .color = color,
            .alignment = Qt::AlignRight};
}

} // namespace

double DashboardHeader::QuickStat::width() const
{
    return std::max({minWidth, label.width(), value.width()});
}

DashboardHeader::DashboardHeader(const QString &chipName, QWidget *parent)
    : AccessibleWidget(parent),
      m_name{.text = u"Corvane"_s,
             .font = Theme::systemFont(16, QFont::DemiBold),
             .color = Theme::textPrimary,
             .digits = Digits::proportional},
      m_chip{.name = u"Chip"_s,
             .text = singleLine(chipName),
             .font = Theme::systemFont(11),
             .color = Theme::textSecondary,
             .digits = Digits::proportional},
      m_stats{QuickStat{statLabel(u"MEM"_s), statValue(u"Memory"_s, Theme::memory), 34},
              QuickStat{statLabel(u"CPU"_s), statValue(u"CPU"_s, Theme::cpu), 34},
              QuickStat{statLabel(u"GPU"_s), statValue(u"GPU"_s, Theme::gpu), 34},
              QuickStat{statLabel(u"PWR"_s), statValue(u"Power"_s, Theme::power), 46}}
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleName(u"Corvane"_s);
    m_name.font.setLetterSpacing(QFont::AbsoluteSpacing, -0.1);
    m_name.baseline = {logoSide + gap, nameLine.baseline(m_name.font)};
    m_chip.baseline = {logoSide + gap, chipLine.baseline(m_chip.font)};
}

void DashboardHeader::show(const SystemMetrics &current)
{
    const ChipReading chip = current.chip.value_or(ChipReading{});
    const std::array<QString, 4> values{
        percentText(usedPercent(current.memory)),
        percentText(unlessDenied(chip.cpuActiveFraction * 100, chip.denied.cpuLoad)),
        percentText(unlessDenied(chip.gpuActiveFraction * 100, chip.denied.gpuLoad)),
        tightWattsText(shownTotalWatts(current.chip), 1)};
    for (std::size_t i = 0; i < m_stats.size(); ++i) {
        QuickStat &stat = m_stats[i];
        if (stat.value.text == values[i])
            continue;
        const double previousWidth = stat.width();
        update(stat.value.bounds().toAlignedRect());
        stat.value.text = values[i];
        update(stat.value.bounds().toAlignedRect());
        announceText(static_cast<int>(i) + 2);
        if (stat.width() != previousWidth)
            layOut();
    }
}

std::vector<CardText> DashboardHeader::texts() const
{
    std::vector<CardText> texts{m_name, m_chip};
    for (const QuickStat &stat : m_stats)
        texts.insert(texts.end(), {stat.label, stat.value});
    return texts;
}

std::vector<AccessibleText> DashboardHeader::accessibleTexts() const
{
    std::vector<AccessibleText> texts{m_name.accessible(), m_chip.accessible()};
    for (const QuickStat &stat : m_stats)
        texts.push_back(stat.value.accessible());
    return texts;
}

void DashboardHeader::resizeEvent(QResizeEvent *)
{
    layOut();
}

void DashboardHeader::layOut()
{
    double right = width();
    for (std::size_t i = m_stats.size(); i-- > 0;) {
        QuickStat &stat = m_stats[i];
        stat.label.baseline = {right, labelLine.baseline(stat.label.font)};
        stat.value.baseline = {right, valueLine.baseline(stat.value.font)};
        right -= stat.width() + statGap;
    }
    m_chip.maxWidth = std::max(right - m_chip.baseline.x(), 1.0);
    update();
}

void DashboardHeader::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintWindowBackground(painter, *this, event->region());

    paintLogo(painter, QRectF(0, (height() - logoSide) / 2, logoSide, logoSide));
    for (const CardText &text : texts())
        text.paint(painter);
}

} // namespace corvane
