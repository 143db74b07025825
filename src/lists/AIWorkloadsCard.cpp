#include "lists/AIWorkloadsCard.h"

#include "cards/InfoTexts.h"
#include "lists/FrameworkColor.h"
#include "lists/RowList.h"
#include "lists/ShareBar.h"
#include "ui/ByteFormatter.h"
#include "ui/CardStyle.h"
#include "ui/Icon.h"
#include "ui/RoundedBox.h"
#include "ui/Theme.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <utility>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr int rowHeight = 34;
constexpr int rowGap = 10;
constexpr int listFoot = 8; ///< Between the list and the card's bottom edge.
constexpr double tileSide = 30;
constexpr double tileRadius = 8;
constexpr double tileIconSide = 16;
constexpr double tileGap = 10;
constexpr double nameGap = 6;
constexpr double minColumnGap = 12;    ///< Between the texts at the left and at the right.
constexpr TextLine firstLine{0.5, 16}; ///< Top and height in a row.
constexpr TextLine secondLine{18, 14};

// The columns of memory where a machine tells that of its GPUs.
constexpr double columnGap = 10;
constexpr double gpuColumn = 76;
constexpr double ramColumn = 96;
constexpr double widthWithBar = 520; ///< Of the content.
constexpr double textsBesideBar = 212;
constexpr double barHeight = 6;

/// A value above its caption, right-aligned in a column.
std::array<CardText, 2> valueTexts(const QRectF &row, double right, const QString &value,
                                   const QColor &color, const QString &caption)
{
    const QFont valueFont = Theme::systemFont(11, QFont::DemiBold);
    const QFont captionFont = Theme::systemFont(9);
    return {CardText{.text = value,
                     .font = valueFont,
                     .color = color,
                     .alignment = Qt::AlignRight,
                     .baseline = {right, row.top() + firstLine.baseline(valueFont)}},
            CardText{.text = caption,
                     .font = captionFont,
                     .color = Theme::textTertiary,
                     .alignment = Qt::AlignRight,
                     .baseline = {right, row.top() + secondLine.baseline(captionFont)}}};
}

/// Right end of the column of GPU memory.
double gpuRight(const QRectF &row)
{
    return row.right() - ramColumn - columnGap;
}

/// The bar between the texts and the columns; null where there is no room for it.
QRectF barPlace(const QRectF &row)
{
    if (row.width() < widthWithBar)
        return {};
    const double left = row.left() + tileSide + tileGap + textsBesideBar + columnGap;
    const double right = gpuRight(row) - gpuColumn - columnGap;
    return {left, row.center().y() - barHeight / 2, right - left, barHeight};
}

bool hasModel(const AIWorkload &workload)
{
    return workload.model && !workload.model->isEmpty();
}

QString modelText(const AIWorkload &workload)
{
    return hasModel(workload) ? *workload.model : u"model unknown"_s;
}

QString pidText(const AIWorkload &workload)
{
    return u"pid %1"_s.arg(workload.pid);
}

CardText modelCardText(const AIWorkload &workload)
{
    CardText model{.text = modelText(workload),
                   .font = Theme::monospacedFont(10),
                   .color = Theme::textTertiary,
                   .digits = Digits::proportional};
    if (!hasModel(workload)) {
        model.font = Theme::systemFont(10);
        model.font.setItalic(true);
        model.color = Theme::withOpacity(Theme::textTertiary, 0.6);
    }
    return model;
}

} // namespace

AIWorkloadsCard::AIWorkloadsCard(QWidget *parent)
    : Card({u"brain"_s, u"AI Workloads"_s, Theme::textPrimary}, infoText(InfoTopic::workloads),
           parent),
      m_list(new RowList(u"AI workloads"_s,
                         {.height = rowHeight,
                          .gap = rowGap,
                          .margin = CardStyle::padding,
                          .paint = [this](QPainter &painter, int row,
                                          const QRectF &place) { paintRow(painter, row, place); },
                          .accessibleRow = [this](int row) { return accessibleRow(row); }},
                         this))
{
    m_list->hide();
    showEmptyState(true);
}

void AIWorkloadsCard::show(const std::vector<AIWorkload> &workloads)
{
    std::vector<AIWorkload> shown = workloads;
    for (AIWorkload &workload : shown) {
        workload.processName = singleLine(workload.processName);
        if (workload.model)
            workload.model = singleLine(*workload.model);
    }
    const std::vector<AIWorkload> previous = std::exchange(m_workloads, std::move(shown));

    showTag(u"AI workloads"_s,
            m_workloads.empty() ? QString() : u"%1 active"_s.arg(m_workloads.size()));
    if (previous.empty() != m_workloads.empty())
        showEmptyState(m_workloads.empty());

    m_list->setRowCount(static_cast<int>(m_workloads.size()));
    for (std::size_t i = 0; i < std::min(previous.size(), m_workloads.size()); ++i) {
        if (previous[i] != m_workloads[i])
            m_list->updateRow(static_cast<int>(i));
    }
}

void AIWorkloadsCard::setGPUMemory(const QString &label, std::uint64_t total)
{
    if (label == m_gpuLabel && total == m_gpuTotal)
        return;
    m_gpuLabel = label;
    m_gpuTotal = total;
    m_list->update();
}

bool AIWorkloadsCard::hasGPUColumn() const
{
    return !m_gpuLabel.isEmpty()
        && std::ranges::any_of(
            m_workloads, [](const AIWorkload &workload) { return workload.gpuMemory.has_value(); });
}

void AIWorkloadsCard::showEmptyState(bool empty)
{
    m_list->setVisible(!empty);
    if (!empty) {
        showNotice({}, {}, {});
        return;
    }
    showNotice(u"moon.zzz"_s, u"No AI inference detected"_s,
               u"Launch Ollama, MLX, llama.cpp, LM Studio, ComfyUI, vLLM…"_s);
}

AccessibleText AIWorkloadsCard::accessibleRow(int index) const
{
    const AIWorkload &workload = m_workloads[static_cast<std::size_t>(index)];
    const ByteFormatter &bytes = ByteFormatter::f();
    QStringList parts{modelText(workload), bytes.string(workload.memory), pidText(workload)};
    if (hasGPUColumn() && workload.gpuMemory)
        parts.insert(1, bytes.string(*workload.gpuMemory) + u' ' + m_gpuLabel);
    return {displayName(workload.framework) + u", "_s + workload.processName, parts.join(u", "_s)};
}

void AIWorkloadsCard::layOut()
{
    const double listHeight = cardSize().height() - bodyTop - listFoot;
    place(*m_list, QRectF(0, bodyTop, cardSize().width(), listHeight));
}

void AIWorkloadsCard::paintRow(QPainter &painter, int index, const QRectF &place) const
{
    const AIWorkload &workload = m_workloads[static_cast<std::size_t>(index)];
    const QColor color = frameworkColor(workload.framework);
    const QRectF tile(place.left(), place.center().y() - tileSide / 2, tileSide, tileSide);
    fillRounded(painter, tile, tileRadius, Theme::withOpacity(color, 0.18));
    constexpr double inset = (tileSide - tileIconSide) / 2;
    paintIcon(painter, symbol(workload.framework), tile.adjusted(inset, inset, -inset, -inset),
              color, SymbolWeight::semibold);
    for (const CardText &text : rowTexts(index, place))
        text.paint(painter);
    if (hasGPUColumn() && !barPlace(place).isNull())
        paintBar(painter, workload, barPlace(place));
}

std::vector<CardText> AIWorkloadsCard::rowTexts(int index, const QRectF &place) const
{
    const AIWorkload &workload = m_workloads[static_cast<std::size_t>(index)];
    const QFont frameworkFont = Theme::systemFont(12, QFont::DemiBold);
    const double firstBaseline = place.top() + firstLine.baseline(frameworkFont);
    const double secondBaseline = place.top() + secondLine.baseline(Theme::systemFont(9));
    const double textLeft = place.left() + tileSide + tileGap;

    std::vector<CardText> columns = columnTexts(workload, place);
    const double textEnd = textsEnd(columns, place);
    const CardText framework{.text = displayName(workload.framework),
                             .font = frameworkFont,
                             .color = frameworkColor(workload.framework),
                             .baseline = {textLeft, firstBaseline},
                             .maxWidth = textEnd - textLeft};
    const double nameLeft = textLeft + framework.width() + nameGap;
    const CardText name{.text = workload.processName,
                        .font = Theme::systemFont(11),
                        .color = Theme::textSecondary,
                        .baseline = {nameLeft, firstBaseline},
                        .maxWidth = std::max(textEnd - nameLeft, 1.0)};
    CardText model = modelCardText(workload);
    model.baseline = {textLeft, secondBaseline};
    model.maxWidth = textEnd - textLeft;
    columns.insert(columns.begin(), {framework, name, model});
    return columns;
}

std::vector<CardText> AIWorkloadsCard::columnTexts(const AIWorkload &workload,
                                                   const QRectF &place) const
{
    const ByteFormatter &bytes = ByteFormatter::f();
    const QString pid = pidText(workload);
    const auto [memory, memoryCaption] =
        valueTexts(place, place.right(), bytes.string(workload.memory), Theme::textPrimary,
                   hasGPUColumn() ? u"RAM · "_s + pid : pid);
    if (!hasGPUColumn())
        return {memory, memoryCaption};
    const QColor color =
        workload.gpuMemory ? Theme::gpu : Theme::withOpacity(Theme::gpu, Theme::absentOpacity);
    const auto [gpu, gpuCaption] = valueTexts(
        place, gpuRight(place), workload.gpuMemory ? bytes.string(*workload.gpuMemory) : u"–"_s,
        color, m_gpuLabel);
    return {memory, memoryCaption, gpu, gpuCaption};
}

double AIWorkloadsCard::textsEnd(const std::vector<CardText> &columns, const QRectF &place) const
{
    if (!hasGPUColumn())
        return place.right() - std::max(columns[0].width(), columns[1].width()) - minColumnGap;
    if (!barPlace(place).isNull())
        return barPlace(place).left() - columnGap;
    return gpuRight(place) - gpuColumn - minColumnGap;
}

void AIWorkloadsCard::paintBar(QPainter &painter, const AIWorkload &workload,
                               const QRectF &bar) const
{
    fillRounded(painter, bar, barHeight / 2, Theme::track);
    const double share = m_gpuTotal == 0
        ? 0
        : static_cast<double>(workload.gpuMemory.value_or(0)) / static_cast<double>(m_gpuTotal);
    if (workload.gpuMemory)
        fillShareBar(painter, bar, std::min(share, 1.0), Theme::gpu);
}

} // namespace corvane
