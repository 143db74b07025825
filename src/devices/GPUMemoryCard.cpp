#include "devices/GPUMemoryCard.h"

#include "cards/DeniedTexts.h"
#include "cards/HistoryChart.h"
#include "cards/InfoTexts.h"
#include "cards/MeansChart.h"
#include "charts/HoverTime.h"
#include "charts/Sparkline.h"
#include "devices/GPUNames.h"
#include "records/MachineParts.h"
#include "ui/ByteFormatter.h"
#include "ui/MachineText.h"
#include "ui/NumberText.h"
#include "ui/Theme.h"

#include <QPainter>

#include <algorithm>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr double rowsHeight = 64; ///< From the top of the bar to above the chart.
constexpr double rowGap = 10;     ///< Between the parts of a row.
constexpr double columnGap = 14;
constexpr double numberWidth = 8;
constexpr double figuresWidth = 92;
constexpr double rowBarHeight = 8;
constexpr double leastBar = 40; ///< Where a row has less, it has no figures.
constexpr double chipsBelowTwoRows = 28;

QString atLeast(const GPUMemoryTotal &memory, const QString &bytes)
{
    return memory.isLowerBound ? u"≥ "_s + bytes : bytes;
}

/// Why nothing is known of the memory, as a sentence.
QString deniedSentence(Coverage coverage)
{
    if (coverage == Coverage::asleep)
        return u"The card sleeps and is left asleep; it shows here when something wakes it."_s;
    const DeniedNotice notice = gpuNotice(coverage);
    if (coverage == Coverage::noLibrary || coverage == Coverage::newDriver)
        return notice.line + u". "_s + notice.hint;
    return coverage == Coverage::locked ? u"Only root may read how much is in use."_s
                                        : u"The driver does not tell how much is in use."_s;
}

} // namespace

GPUMemoryCard::GPUMemoryCard(QWidget *parent)
    : CapacityCard({u"memorychip"_s, u"VRAM"_s, Theme::gpu}, infoText(InfoTopic::gpuMemory),
                   u"GPU memory used in percent"_s, parent),
      m_stat(addText(headerStat(u"Graphics card"_s)))
{
    chart()->setAccessibleName(u"GPU memory used over time"_s);
    chart()->setHoverPill([this](std::size_t index) { return pill(index); });
}

void GPUMemoryCard::setHolders(const std::vector<GPUHolders> &holders)
{
    m_holders = holders;
}

void GPUMemoryCard::show(const SystemMetrics &current, const ChartHistory &history)
{
    showHeading(coverageOf(current));
    showHistory(history);
    showNow(current);
}

void GPUMemoryCard::showHeading(const MachineCoverage &machine)
{
    std::vector<GPUCoverage> gpus = gpusWithMemory(machine);
    if (gpus.size() != m_gpus.size())
        update();
    m_gpus = std::move(gpus);
    m_isIntegrated = !hasVRAM(machine);
    setTitle(m_isIntegrated ? u"GPU Memory"_s : u"VRAM"_s);
    setInfo(infoText(InfoTopic::gpuMemory, machine));
    setNotes(gpuMemoryNotes(machine));
    setText(m_stat, singleLine(gpuMemoryHeading(m_gpus)));
}

void GPUMemoryCard::showHistory(const ChartHistory &history)
{
    std::vector<std::optional<double>> percents;
    percents.reserve(history.recent.size());
    m_totals.clear();
    for (const SystemMetrics &sample : history.recent) {
        m_totals.push_back(gpuMemoryTotal(sample));
        percents.push_back(usedPercent(m_totals.back()));
        if (percents.back())
            m_awakeUntil = std::max(m_awakeUntil.value_or(sample.timestamp), sample.timestamp);
    }
    if (history.means)
        showMeans(*history.means, Measure::gpuMemory);
    else
        showChart(historyChart(history.recent), std::move(percents));
}

void GPUMemoryCard::showNow(const SystemMetrics &current)
{
    const GPUMemoryTotal memory = gpuMemoryTotal(current);
    const bool areAsleep = memory.state == FigureState::asleep;
    setHasBar(m_gpus.size() <= 1);
    showRows(current.chip);
    if (areAsleep)
        showState(u"moon.zzz"_s, u"Asleep"_s);
    else
        showFigure(usedPercent(memory), memory.isLowerBound);

    const ByteFormatter &bytes = ByteFormatter::f();
    const QString total = memory.total > 0 ? bytes.string(memory.total) : QString();
    if (memory.state == FigureState::known) {
        showAmounts(atLeast(memory, bytes.string(memory.used)), total);
        showUse(memory, current.chip);
        return;
    }
    showAmounts({}, total);
    showSegments({});
    showChips({});
    const Coverage coverage = m_gpus.empty() ? Coverage::known : m_gpus.front().memory;
    const bool hasLine = m_gpus.size() <= 1;
    showMessage(hasLine && isDenied(coverage) ? deniedSentence(coverage) : QString());
    const bool wasAwake = hasLine && areAsleep && m_awakeUntil;
    showLine(wasAwake ? u"Awake until"_s : QString(),
             wasAwake ? HoverTime::string(*m_awakeUntil) : QString());
}

void GPUMemoryCard::showUse(const GPUMemoryTotal &memory, const std::optional<ChipReading> &chip)
{
    showMessage({});
    const bool isOne = m_gpus.size() == 1;
    const GPUMetrics *only = isOne ? metricsOf(m_gpus.front(), chip) : nullptr;
    showSegments(isOne ? segments(m_gpus.front(), only) : std::vector<BarSegment>());
    if (m_gpus.size() <= 2)
        showChips(chips(memory, chip), isOne ? 0 : chipsBelowTwoRows);
    else
        showChips({});

    const ByteFormatter &bytes = ByteFormatter::f();
    if (only && m_gpus.front().usesSystemMemory && only->memoryUsed) {
        const std::uint64_t own = std::min(only->memoryOwnUsed.value_or(0), *only->memoryUsed);
        const QString inRAM = bytes.string(*only->memoryUsed - own);
        showLine(u"In RAM"_s, only->memoryOwnUsed ? inRAM + u", part of Wired"_s : inRAM);
        return;
    }
    const GPUHolders *holders = isOne ? holdersOf(m_gpus.front()) : nullptr;
    if (holders && !holders->largestName.isEmpty()) {
        showLine(u"Largest"_s,
                 singleLine(holders->largestName) + u' ' + bytes.string(holders->largestBytes));
    } else {
        showLine({}, {});
    }
}

const GPUHolders *GPUMemoryCard::holdersOf(const GPUCoverage &gpu) const
{
    const auto found = std::ranges::find(m_holders, gpu.device, &GPUHolders::device);
    return found == m_holders.end() ? nullptr : &*found;
}

std::optional<std::uint64_t> GPUMemoryCard::aiBytes(const std::optional<ChipReading> &chip) const
{
    std::uint64_t sum = 0;
    for (const GPUCoverage &gpu : m_gpus) {
        const GPUMetrics *metrics = metricsOf(gpu, chip);
        if (!metrics || !metrics->memoryUsed)
            continue;
        const GPUHolders *holders = holdersOf(gpu);
        if (!holders)
            return std::nullopt;
        sum += std::min(holders->aiBytes, *metrics->memoryUsed);
    }
    return sum;
}

std::vector<Chip> GPUMemoryCard::chips(const GPUMemoryTotal &memory,
                                       const std::optional<ChipReading> &chip) const
{
    const ByteFormatter &bytes = ByteFormatter::f();
    const QColor color = Theme::withOpacity(Theme::gpu, 0.95);
    std::vector<Chip> result;
    if (const std::optional<std::uint64_t> held = aiBytes(chip)) {
        const std::uint64_t ai = std::min(*held, memory.used);
        result.push_back({u"AI"_s, color, bytes.string(ai)});
        const std::uint64_t other = memory.used - ai;
        if (other > 0 || !memory.isLowerBound) // "At least 0" would say nothing.
            result.push_back(
                {u"Other"_s, Theme::white(0.85F), atLeast(memory, bytes.string(other))});
    } else {
        result.push_back({u"In use"_s, color, atLeast(memory, bytes.string(memory.used))});
    }
    if (!memory.isLowerBound && memory.total > 0) {
        const std::uint64_t free = memory.total - std::min(memory.used, memory.total);
        result.push_back({u"Free"_s, Theme::textTertiary, bytes.string(free)});
    }
    return result;
}

std::vector<BarSegment> GPUMemoryCard::segments(const GPUCoverage &gpu,
                                                const GPUMetrics *metrics) const
{
    if (!metrics || !metrics->memoryUsed || gpu.memoryTotal.value_or(0) == 0)
        return {};
    const auto total = static_cast<double>(*gpu.memoryTotal);
    const double used = std::min(static_cast<double>(*metrics->memoryUsed), total);
    const GPUHolders *holders = holdersOf(gpu);
    const double ai = holders ? std::min(static_cast<double>(holders->aiBytes), used) : used;
    return {{ai / total, Theme::withOpacity(Theme::gpu, 0.95)},
            {(used - ai) / total, Theme::white(0.85F)}};
}

void GPUMemoryCard::showRows(const std::optional<ChipReading> &chip)
{
    const std::size_t count = m_gpus.size() > 1 ? m_gpus.size() : 0;
    while (m_rows.size() < count) {
        const QFont bold = Theme::systemFont(10, QFont::DemiBold);
        const CardText plain{.font = Theme::systemFont(10),
                             .color = Theme::textSecondary,
                             .alignment = Qt::AlignRight};
        Row row;
        row.number = &addText({.font = bold, .color = Theme::textSecondary, .isCaption = true});
        row.used = &addText({.font = bold, .alignment = Qt::AlignRight});
        row.slash = &addText(plain);
        row.slash->isCaption = true;
        row.total = &addText(plain);
        m_rows.push_back(row);
    }
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        if (i < count) {
            setRow(i, metricsOf(m_gpus[i], chip));
            continue;
        }
        for (CardText *text : {m_rows[i].number, m_rows[i].used, m_rows[i].slash, m_rows[i].total})
            setText(*text, {});
    }
    placeRows();
}

void GPUMemoryCard::setRow(std::size_t index, const GPUMetrics *metrics)
{
    Row &row = m_rows[index];
    const GPUCoverage &gpu = m_gpus[index];
    const ByteFormatter &bytes = ByteFormatter::f();
    const bool hasFigures = rowGrid().hasFigures;
    const bool isKnown = metrics && metrics->memoryUsed;
    const QString used = isKnown ? bytes.gigabyteNumber(*metrics->memoryUsed)
        : isDenied(gpu.memory)   ? reasonText(gpu.memory)
                                 : u"–"_s;
    const QString total = gpu.memoryTotal ? bytes.gigabytes(*gpu.memoryTotal) : QString();
    const QString mark = isKnown && metrics->memoryIsLowerBound ? u"≥ "_s : QString();
    row.used->name = u"Memory in use on GPU %1"_s.arg(index);
    row.total->name = u"Memory of GPU %1"_s.arg(index);
    setText(*row.number, QString::number(index));
    setText(*row.used, hasFigures ? mark + used : QString(),
            isKnown ? Theme::textPrimary : Theme::textSecondary);
    setText(*row.slash, hasFigures && !total.isEmpty() ? u" / "_s : QString());
    setText(*row.total, hasFigures ? total : QString());
    std::vector<BarSegment> now = segments(gpu, metrics);
    if (now != row.segments)
        updateArea(rowBar(index));
    row.segments = std::move(now);
}

GPUMemoryCard::RowGrid GPUMemoryCard::rowGrid() const
{
    constexpr std::size_t mostRows = 4;
    const std::size_t count = m_gpus.size();
    RowGrid grid;
    if (count > mostRows)
        grid.columns = std::max<std::size_t>(2, (count + mostRows - 1) / mostRows);
    const std::size_t rows = (count + grid.columns - 1) / grid.columns;
    grid.pitch = rows <= 2 ? 20 : rows == 3 ? 21 : rowsHeight / static_cast<double>(rows);
    const double gaps = columnGap * static_cast<double>(grid.columns - 1);
    const double width =
        (contentRight() - contentLeft() - gaps) / static_cast<double>(grid.columns);
    grid.hasFigures = width - numberWidth - figuresWidth - 2 * rowGap >= leastBar;
    return grid;
}

QRectF GPUMemoryCard::rowPlace(std::size_t index) const
{
    const RowGrid grid = rowGrid();
    const std::size_t rows = (m_gpus.size() + grid.columns - 1) / grid.columns;
    const double gaps = columnGap * static_cast<double>(grid.columns - 1);
    const double width =
        (contentRight() - contentLeft() - gaps) / static_cast<double>(grid.columns);
    const std::size_t column = index / rows;
    const double left = contentLeft() + static_cast<double>(column) * (width + columnGap);
    return {left, barTop + static_cast<double>(index % rows) * grid.pitch, width, grid.pitch};
}

QRectF GPUMemoryCard::rowBar(std::size_t index) const
{
    const QRectF row = rowPlace(index);
    const double left = row.left() + numberWidth + rowGap;
    const double right = row.right() - (rowGrid().hasFigures ? figuresWidth + rowGap : 0);
    return {left, row.center().y() - rowBarHeight / 2, right - left, rowBarHeight};
}

void GPUMemoryCard::placeRows()
{
    if (m_gpus.size() < 2)
        return;
    for (std::size_t i = 0; i < std::min(m_rows.size(), m_gpus.size()); ++i) {
        const Row &row = m_rows[i];
        const QRectF place = rowPlace(i);
        // Half a point above the middle of the bar looks like its middle.
        const double baseline =
            TextLine{place.top() - 0.75, place.height()}.baseline(row.used->font);
        moveText(*row.number, {place.left(), baseline});
        moveText(*row.total, {place.right(), baseline});
        moveText(*row.slash, {place.right() - row.total->width(), baseline});
        moveText(*row.used, {row.slash->baseline.x() - row.slash->width(), baseline});
    }
}

PillContent GPUMemoryCard::pill(std::size_t index) const
{
    if (chart()->shown().showsMeans)
        return loadPill(chart()->shown(), index, Theme::gpu);
    const GPUMemoryTotal &memory = m_totals[index];
    QStringList values{percentText(usedPercent(memory))};
    if (memory.state == FigureState::known)
        values.append(atLeast(memory, ByteFormatter::f().string(memory.used)));
    return {HoverTime::string(chart()->shown().timestamps[index]), {valuesRow(values, Theme::gpu)}};
}

void GPUMemoryCard::layOut()
{
    m_stat.baseline = headerStatEnd();
    m_stat.maxWidth = headerStatWidth();
    CapacityCard::layOut();
    placeRows();
}

void GPUMemoryCard::paintShapes(QPainter &painter, const QRectF &dirty)
{
    CapacityCard::paintShapes(painter, dirty);
    for (std::size_t i = 0; m_gpus.size() > 1 && i < m_gpus.size(); ++i) {
        if (rowBar(i).intersects(dirty))
            paintSegmentBar(painter, rowBar(i), m_rows[i].segments);
    }
}

} // namespace corvane
