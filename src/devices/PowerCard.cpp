#include "devices/PowerCard.h"

#include "cards/DeniedTexts.h"
#include "cards/InfoTexts.h"
#include "charts/Sparkline.h"
#include "ui/CardStyle.h"
#include "ui/EnergyText.h"
#include "ui/MachineText.h"
#include "ui/NumberText.h"
#include "ui/Theme.h"

#include <QPainter>

#include <algorithm>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr int legendHeight = 14;
constexpr int chartGap = 12;
constexpr double legendDot = 6;
constexpr double legendDotGap = 5;
constexpr double legendGap = 14; ///< Between entries.

// Without the fraction the text would shift by a pixel.
constexpr double legendTop = 46 - 0.25;
constexpr TextLine legendLine{legendTop, legendHeight};

QString powerStatText(std::optional<double> peak, const std::optional<ChipReading> &chip)
{
    const QString text = u"peak "_s + wattsText(peak, 1);
    const std::optional<double> celsius = chip ? chip->packageTempC : std::nullopt;
    return celsius && *celsius > 0 ? text + u" · pkg "_s + celsiusText(*celsius) : text;
}

/// "CPU", or "CPU locked" for a part without a series.
QString legendText(const PowerPart &part)
{
    return part.coverage == Coverage::known ? part.label
                                            : part.label + u' ' + reasonText(part.coverage);
}

} // namespace

PowerCard::PowerCard(QWidget *parent)
    : Card({u"bolt.fill"_s, u"Package Power"_s, Theme::power}, infoText(InfoTopic::power), parent),
      m_power(this),
      m_stat(addText(headerStat(u"Power"_s))),
      m_system(addText({.name = u"Whole system"_s,
                        .font = Theme::systemFont(10),
                        .color = Theme::textSecondary,
                        .alignment = Qt::AlignRight})),
      m_energyToday(addText({.name = u"Energy"_s,
                             .font = Theme::systemFont(10),
                             .color = Theme::textSecondary,
                             .alignment = Qt::AlignRight}))
{
    showLegend({});
    setInfoSupplement([this] { return energyMarkdown(m_energy, m_isWhole ? u"ANE"_s : u"NPU"_s); });
    chart()->setAccessibleName(u"Power of CPU, GPU and ANE over time"_s);
}

void PowerCard::show(const SystemMetrics &current, const ChartHistory &history)
{
    const MachineCoverage &machine = coverageOf(current);
    setInfo(infoText(InfoTopic::power, machine));
    if (!machine.isWhole) {
        setTitle(u"Power"_s);
        chart()->setAccessibleName(u"Power over time"_s);
    }
    m_isWhole = machine.isWhole;
    QStringList notes = machine.isWhole ? QStringList() : powerNotes(machine);
    notes.append(energyTodayText(m_energy));
    notes.removeAll(QString());
    setNotes(notes);
    showLegend(machine);
    m_power.show(history, machine);
    setText(m_stat, powerStatText(m_power.peak(), current.chip));
    const std::optional<double> system = current.chip ? current.chip->systemWatts : std::nullopt;
    setText(m_system, system ? systemWattsText(*system, machine.systemWattsSource) : QString());
    placeSums();
}

/// At the right end of the legend's line, as far as there is room. A whole chip's card has no such
/// text: there it is the tool tip.
void PowerCard::placeSums()
{
    constexpr double gap = 14;
    const double system = m_system.text.isEmpty() ? 0 : m_system.width() + gap;
    const double room = contentRight() - m_legendEnd - gap - system;
    QString energy;
    for (const QString &words : {shortEnergyText(m_energy), energyTodayText(m_energy)}) {
        if (!m_isWhole && textWidth(words, m_energyToday.font) <= room)
            energy = words;
    }
    setText(m_energyToday, energy);
    const double baseline = legendLine.baseline(m_system.font);
    moveText(m_energyToday, {contentRight(), baseline});
    const double shift = energy.isEmpty() ? 0 : m_energyToday.width() + gap;
    moveText(m_system, {contentRight() - shift, baseline});
}

void PowerCard::recomputeYMax(const std::vector<SystemMetrics> &history)
{
    m_power.recomputeYMax(history);
}

void PowerCard::showLegend(const MachineCoverage &machine)
{
    std::vector<PowerPart> parts = powerParts(machine);
    if (parts == m_parts)
        return;
    m_parts = std::move(parts);
    while (m_legend.size() < m_parts.size()) {
        m_legend.push_back(&addText({.font = Theme::systemFont(10, QFont::Medium),
                                     .color = Theme::textSecondary,
                                     .isCaption = true}));
    }
    for (std::size_t i = 0; i < m_legend.size(); ++i)
        setText(*m_legend[i], i < m_parts.size() ? legendText(m_parts[i]) : QString());
    placeLegend();
    update();
}

void PowerCard::placeLegend()
{
    double x = contentLeft();
    for (CardText *entry : m_legend) {
        entry->baseline = {x + legendDot + legendDotGap, legendLine.baseline(entry->font)};
        x = entry->baseline.x() + entry->width() + legendGap;
        if (!entry->text.isEmpty())
            m_legendEnd = x - legendGap;
    }
}

void PowerCard::layOut()
{
    m_stat.baseline = headerStatEnd();
    m_stat.maxWidth = headerStatWidth();
    placeLegend();
    placeSums();
    constexpr int chartTop = bodyTop + legendHeight + chartGap;
    place(*chart(), contentBelow(chartTop));
}

void PowerCard::paintShapes(QPainter &painter, const QRectF &dirty)
{
    constexpr double top = bodyTop + (legendHeight - legendDot) / 2;
    for (std::size_t i = 0; i < m_parts.size(); ++i) {
        const double left = m_legend[i]->baseline.x() - legendDotGap - legendDot;
        const QRectF dot(left, top, legendDot, legendDot);
        if (dot.intersects(dirty))
            paintPowerDot(painter, dot, m_parts[i]);
    }
}

} // namespace corvane
