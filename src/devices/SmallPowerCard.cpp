#include "devices/SmallPowerCard.h"

#include "cards/DeniedTexts.h"
#include "cards/InfoTexts.h"
#include "charts/Sparkline.h"
#include "ui/CardStyle.h"
#include "ui/EnergyText.h"
#include "ui/Icon.h"
#include "ui/MachineText.h"
#include "ui/NumberText.h"
#include "ui/Theme.h"

#include <QPainter>

#include <algorithm>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr TextLine figureLine{46.125, 32};
constexpr double figureShift = -1; ///< Aligns the ink, not the side bearing, with the left edge.
constexpr double unitGap = 3;
constexpr TextLine subtitleLine{83.5, 14};
constexpr int chartTop = 110;
constexpr double narrow = 240; ///< A narrower card has a narrower column and gap.
constexpr double rowHeight = 13;
constexpr double rowsTop = 46;
constexpr double textTop = rowsTop - 1; ///< Of the first row; capitals are centred on the dot.
constexpr double dotSize = 6;
constexpr double dotGap = 5;
constexpr std::size_t usualRows = 4; ///< Level with the figure and its subtitle.
constexpr double hintWidth = 150;
constexpr double hintIconSide = 9;
constexpr double hintIconGap = 3;

QFont rowFont(QFont::Weight weight)
{
    return Theme::systemFont(10, weight);
}

/// A kilowatt and more goes without a fraction, which would leave the narrow card no label.
QString rowText(double watts)
{
    return fixedText(watts, watts < 1000 ? 2 : 0);
}

/// "System · battery".
QString systemName(const QString &source)
{
    return source.isEmpty() ? u"System"_s : u"System · "_s + source;
}

double rowBaseline(std::size_t row, const QFont &font)
{
    return TextLine{textTop + static_cast<double>(row) * rowHeight, rowHeight}.baseline(font);
}

} // namespace

SmallPowerCard::SmallPowerCard(QWidget *parent)
    : Card({u"bolt.fill"_s, u"Power"_s, Theme::power}, infoText(InfoTopic::power), parent),
      m_power(this),
      m_stat(addText(headerStat(u"Peak"_s))),
      m_figure(addText({.name = u"Power in watts"_s,
                        .font = Theme::systemFont(34, QFont::DemiBold),
                        .color = Theme::power,
                        .digits = Digits::proportional})),
      m_unit(addText({.font = Theme::systemFont(17, QFont::Medium),
                      .color = Theme::textSecondary,
                      .isCaption = true})),
      m_subtitle(addText(
          {.name = u"Sum of"_s, .font = Theme::systemFont(11), .color = Theme::textSecondary}))
{
    m_figure.font.setLetterSpacing(QFont::AbsoluteSpacing, -0.8);
    for (Row &row : m_rows) {
        row.label = &addText(
            {.font = rowFont(QFont::Medium), .color = Theme::textSecondary, .isCaption = true});
        row.value = &addText({.alignment = Qt::AlignRight});
    }
    for (CardText *&line : m_hint)
        line = &addText({.font = rowFont(QFont::Normal), .color = Theme::textTertiary});
    chart()->setAccessibleName(u"Power over time"_s);
    setInfoSupplement([this] { return energyMarkdown(m_energy, u"NPU"_s); });
}

void SmallPowerCard::show(const SystemMetrics &current, const ChartHistory &history)
{
    const MachineCoverage &machine = coverageOf(current);
    setInfo(infoText(InfoTopic::power, machine));
    QStringList notes = powerNotes(machine);
    notes.append(energyTodayText(m_energy));
    notes.removeAll(QString());
    setNotes(notes);
    m_power.show(history, machine);
    showStat();

    std::vector<PowerPart> parts = powerParts(machine);
    if (parts != m_parts)
        update();
    m_parts = std::move(parts);
    const std::vector<PowerValue> values = powerValues(m_parts, current, machine);
    showFigure(totalWatts(values));
    setText(m_subtitle, powerSumText(m_parts, values, machine));

    m_isLocked = machine.cpuWatts == Coverage::locked;
    const std::optional<double> system = current.chip ? current.chip->systemWatts : std::nullopt;
    m_systemSource = machine.systemWattsSource;
    showRows(values, system ? fixedText(*system, 2) : QString());
    placeRows();
}

/// The peak, and of the energy what there is room for.
void SmallPowerCard::showStat()
{
    const QString peak = u"peak "_s + wattsText(m_power.peak(), 1);
    QString stat = peak;
    for (const QString &energy : {shortEnergyText(m_energy), energyTodayText(m_energy)}) {
        const QString both = peak + u" · "_s + energy;
        if (!energy.isEmpty() && textWidth(both, m_stat.font) <= headerStatWidth())
            stat = both;
    }
    setText(m_stat, stat);
}

void SmallPowerCard::showFigure(std::optional<double> watts)
{
    setText(m_figure, watts ? fixedText(*watts, 0) : u"–"_s,
            watts ? Theme::power : Theme::withOpacity(Theme::power, Theme::absentOpacity));
    setText(m_unit, watts ? u"W"_s : QString());
}

void SmallPowerCard::showRows(const std::vector<PowerValue> &values, const QString &system)
{
    m_hasSystemRow = !system.isEmpty() && m_parts.size() < mostRows;
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        const Row &row = m_rows[i];
        if (i >= m_parts.size()) {
            const bool isSystem = m_hasSystemRow && i == m_parts.size();
            row.value->name = isSystem ? systemName(m_systemSource) : QString();
            row.value->font = rowFont(QFont::DemiBold);
            setText(*row.label, row.value->name);
            setText(*row.value, isSystem ? system : QString(), Theme::textSecondary);
            continue;
        }
        const PowerPart &part = m_parts[i];
        const bool isKnown = part.coverage == Coverage::known;
        row.value->name = u"Power of "_s + part.label;
        row.value->font = rowFont(isKnown ? QFont::DemiBold : QFont::Normal);
        setText(*row.label, part.label);
        const std::optional<double> watts = values[i].watts;
        setText(*row.value,
                !isKnown    ? reasonText(part.coverage)
                    : watts ? rowText(*watts)
                            : u"–"_s,
                isKnown ? part.color : Theme::textTertiary);
    }
    showHint();
}

void SmallPowerCard::showHint()
{
    const bool hint = hasRoomForHint();
    if (hint == m_hint[1]->text.isEmpty())
        update(hintIcon().toAlignedRect());
    setText(*m_hint[0], hint ? u"Only root may read CPU watts."_s : QString());
    setText(*m_hint[1], hint ? u"tells how to open them."_s : QString());
}

/// The hint has the lines below the rows, so far as these are level with the figure.
bool SmallPowerCard::hasRoomForHint() const
{
    return m_isLocked && !m_hasSystemRow && m_parts.size() + m_hint.size() <= usualRows
        && contentRight() - rowsLeft() >= hintWidth;
}

double SmallPowerCard::rowsLeft() const
{
    const bool isNarrow = cardSize().width() < narrow;
    const double figure = m_figure.width() + unitGap + m_unit.width() + figureShift;
    const double column = std::max({isNarrow ? 84.0 : 96.0, figure, m_subtitle.width()});
    return contentLeft() + column + (isNarrow ? 10 : 16);
}

void SmallPowerCard::layOut()
{
    m_stat.baseline = headerStatEnd();
    m_stat.maxWidth = headerStatWidth();
    m_figure.baseline = {contentLeft() + figureShift, figureLine.baseline(m_figure.font)};
    m_subtitle.baseline = {contentLeft(), subtitleLine.baseline(m_subtitle.font)};
    showHint();
    placeRows();
    place(*chart(), contentBelow(chartTop));
}

void SmallPowerCard::placeRows()
{
    moveText(m_unit, {m_figure.baseline.x() + m_figure.width() + unitGap, m_figure.baseline.y()});
    const QRectF hintBefore = hintIcon();
    const QRectF dotsBefore = dot(0) | dot(mostRows - 1);
    const double left = rowsLeft();
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        const Row &row = m_rows[i];
        const double baseline = rowBaseline(i, row.label->font);
        moveText(*row.value, {contentRight(), baseline});
        row.label->maxWidth =
            std::max(contentRight() - row.value->width() - left - dotSize - 2 * dotGap, 1.0);
        moveText(*row.label, {left + dotSize + dotGap, baseline});
    }
    for (std::size_t i = 0; i < m_hint.size(); ++i) {
        const double indent = i == 1 ? hintIconSide + hintIconGap : 0;
        moveText(*m_hint[i], {left + indent, rowBaseline(m_parts.size() + i, m_hint[i]->font)});
    }
    if (hintIcon() != hintBefore)
        updateShape(hintBefore, hintIcon());
    if ((dot(0) | dot(mostRows - 1)) != dotsBefore)
        updateShape(dotsBefore, dot(0) | dot(mostRows - 1));
}

QRectF SmallPowerCard::dot(std::size_t row) const
{
    const double top = rowsTop + static_cast<double>(row) * rowHeight + (rowHeight - dotSize) / 2;
    return {m_rows[row].label->baseline.x() - dotGap - dotSize, top, dotSize, dotSize};
}

QRectF SmallPowerCard::hintIcon() const
{
    const double middle = rowsTop + (static_cast<double>(m_parts.size()) + 1.5) * rowHeight;
    return {m_hint[1]->baseline.x() - hintIconGap - hintIconSide, middle - hintIconSide / 2 - 0.5,
            hintIconSide, hintIconSide};
}

void SmallPowerCard::recomputeYMax(const std::vector<SystemMetrics> &history)
{
    m_power.recomputeYMax(history);
}

void SmallPowerCard::paintShapes(QPainter &painter, const QRectF &dirty)
{
    for (std::size_t i = 0; i < std::min(m_parts.size(), mostRows); ++i) {
        if (dot(i).intersects(dirty))
            paintPowerDot(painter, dot(i), m_parts[i]);
    }
    if (!m_hint[1]->text.isEmpty() && hintIcon().intersects(dirty))
        paintIcon(painter, u"info.circle"_s, hintIcon(), Theme::textTertiary);
}

} // namespace corvane
