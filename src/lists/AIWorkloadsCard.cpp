#include "lists/AIWorkloadsCard.h"

#include "cards/InfoTexts.h"
#include "lists/FrameworkColor.h"
#include "lists/RowList.h"
#include "lists/ShareBar.h"
#include "lists/WorkloadText.h"
#include "records/MachineParts.h"
#include "ui/ByteFormatter.h"
#include "ui/CardStyle.h"
#include "ui/Icon.h"
#include "ui/RoomText.h"
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

constexpr std::uint64_t leastOther = 200 << 20; ///< Bytes; less is no row worth, as for a workload.
constexpr double remarkGap = 6;
constexpr int footHeight = 14;
constexpr int footGap = 8; ///< Between the list and the foot.

QString hintFor(const MachineCoverage &machine)
{
    return machine.isWhole
        ? u"Launch Ollama, MLX, llama.cpp, LM Studio, ComfyUI, vLLM…"_s
        : u"Launch Ollama, llama.cpp, vLLM, SGLang, LM Studio, KoboldCpp, ComfyUI…"_s;
}

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

QString otherName()
{
    return u"Other processes"_s;
}

QString otherExplanation()
{
    return u"Memory in use on the GPU that none of the processes which were looked at holds: that "
           "of other users, of small programs, and the driver's."_s;
}

void paintTile(QPainter &painter, const QRectF &row, const QString &symbol, const QColor &color)
{
    const QRectF tile(row.left(), row.center().y() - tileSide / 2, tileSide, tileSide);
    fillRounded(painter, tile, tileRadius, Theme::withOpacity(color, 0.18));
    constexpr double inset = (tileSide - tileIconSide) / 2;
    paintIcon(painter, symbol, tile.adjusted(inset, inset, -inset, -inset), color,
              SymbolWeight::semibold);
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
    if (workload.model.value_or(QString()).isEmpty()) {
        model.font = Theme::systemFont(10);
        model.font.setItalic(true);
        model.color = Theme::withOpacity(Theme::textTertiary, 0.6);
    }
    return model;
}

/// Texts from outside, as they may be shown.
void sanitize(AIWorkload &workload)
{
    workload.processName = singleLine(workload.processName);
    if (workload.model)
        workload.model = singleLine(*workload.model);
    for (QString &name : workload.details.otherNames)
        name = singleLine(name);
    if (workload.details.quantisation)
        workload.details.quantisation = singleLine(*workload.details.quantisation);
}

/// The first of the remarks that has room behind that text; empty if none has.
CardText remarkText(const CardText &model, const QStringList &remarks)
{
    CardText text{.font = Theme::systemFont(10), .color = Theme::textTertiary};
    const double left = model.baseline.x() + model.width() + remarkGap;
    const double room = model.baseline.x() + model.maxWidth - left;
    text.baseline = {left, model.baseline.y()};
    const auto fitting = std::ranges::find_if(
        remarks, [&](const QString &remark) { return textWidth(remark, text.font) <= room; });
    if (fitting != remarks.end())
        text.text = *fitting;
    return text;
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
                         this)),
      m_foot(addText({.font = Theme::systemFont(11), .color = Theme::textSecondary})),
      m_hint(hintFor({}))
{
    m_list->hide();
    showEmptyState(true);
}

void AIWorkloadsCard::show(const std::vector<AIWorkload> &workloads)
{
    std::vector<AIWorkload> shown = workloads;
    std::ranges::for_each(shown, sanitize);
    const std::vector<AIWorkload> previous = std::exchange(m_workloads, std::move(shown));

    showTag(u"AI workloads"_s,
            m_workloads.empty() ? QString() : u"%1 active"_s.arg(m_workloads.size()));
    if (previous.empty() != m_workloads.empty())
        showEmptyState(m_workloads.empty());

    updateRowCount();
    for (std::size_t i = 0; i < std::min(previous.size(), m_workloads.size()); ++i) {
        if (previous[i] != m_workloads[i])
            m_list->updateRow(static_cast<int>(i));
    }
}

void AIWorkloadsCard::setMachine(const MachineCoverage &machine)
{
    m_hint = hintFor(machine);
    if (m_workloads.empty())
        showEmptyState(true);

    const std::vector<GPUCoverage> gpus =
        machine.isWhole ? std::vector<GPUCoverage>() : gpusWithMemory(machine);
    std::uint64_t total = 0;
    for (const GPUCoverage &gpu : gpus)
        total += gpu.memoryTotal.value_or(0);
    const QString label = gpus.empty() ? QString() : hasVRAM(machine) ? u"VRAM"_s : u"GPU memory"_s;
    if (label == m_gpuLabel && total == m_gpuTotal)
        return;
    m_gpuLabel = label;
    m_gpuTotal = total;
    updateRowCount();
    m_list->update();
}

void AIWorkloadsCard::setOtherGPUMemory(std::uint64_t bytes)
{
    if (bytes == m_otherBytes)
        return;
    m_otherBytes = bytes;
    updateRowCount();
    if (hasOtherRow())
        m_list->updateRow(static_cast<int>(m_workloads.size()));
}

void AIWorkloadsCard::setRoom(const std::optional<ModelRoom> &room)
{
    if (room == m_room)
        return;
    m_room = room;
    layOut();
}

bool AIWorkloadsCard::hasOtherRow() const
{
    return m_otherBytes >= leastOther && hasGPUColumn();
}

void AIWorkloadsCard::updateRowCount()
{
    const int count = static_cast<int>(m_workloads.size()) + (hasOtherRow() ? 1 : 0);
    if (count == m_list->rowCount())
        return;
    m_list->setRowCount(count);
    layOut(); // The rows may need the place of the foot, or leave it.
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
    showNotice(u"moon.zzz"_s, u"No AI inference detected"_s, m_hint);
}

AccessibleText AIWorkloadsCard::accessibleRow(int index) const
{
    const ByteFormatter &bytes = ByteFormatter::f();
    if (isOtherRow(index))
        return {.name = otherName(),
                .value = bytes.string(m_otherBytes) + u' ' + m_gpuLabel,
                .description = otherExplanation()};
    const AIWorkload &workload = m_workloads[static_cast<std::size_t>(index)];
    QStringList parts{modelText(workload)};
    parts.append(modelRemarks(workload).mid(0, 1));
    if (hasGPUColumn() && workload.gpuMemory)
        parts.append(bytes.string(*workload.gpuMemory) + u' ' + m_gpuLabel);
    parts.append({bytes.string(workload.memory), pidText(workload)});
    return {.name = displayName(workload.framework) + u", "_s + workload.processName,
            .value = parts.join(u", "_s),
            .description = workloadExplanation(workload, m_gpuLabel)};
}

void AIWorkloadsCard::layOut()
{
    const double height = cardSize().height();
    const double footTop = height - CardStyle::padding - footHeight;
    const double rowsEnd = bodyTop + m_list->rowCount() * (rowHeight + rowGap) - rowGap;
    const bool hasFoot = m_room && rowsEnd <= footTop - footGap;
    const double listEnd = hasFoot ? footTop - footGap : height - listFoot;
    place(*m_list, QRectF(0, bodyTop, cardSize().width(), listEnd - bodyTop));

    m_foot.maxWidth = contentRight() - contentLeft();
    m_foot.explanation = hasFoot ? roomReckoning(*m_room) : QString();
    moveText(m_foot, {contentLeft(), TextLine{footTop, footHeight}.baseline(m_foot.font)});
    setText(m_foot, hasFoot ? roomText(*m_room) : QString());
}

void AIWorkloadsCard::paintRow(QPainter &painter, int index, const QRectF &place) const
{
    std::optional<std::uint64_t> gpuMemory = m_otherBytes;
    if (isOtherRow(index)) {
        paintTile(painter, place, u"list.bullet.rectangle.portrait"_s, Theme::textSecondary);
    } else {
        const AIWorkload &workload = m_workloads[static_cast<std::size_t>(index)];
        paintTile(painter, place, symbol(workload.framework), frameworkColor(workload.framework));
        gpuMemory = workload.gpuMemory;
    }
    for (const CardText &text : rowTexts(index, place))
        text.paint(painter);
    if (hasGPUColumn() && !barPlace(place).isNull())
        paintBar(painter, gpuMemory, barPlace(place));
}

std::vector<CardText> AIWorkloadsCard::rowTexts(int index, const QRectF &place) const
{
    if (isOtherRow(index))
        return otherTexts(place);
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
    columns.insert(columns.begin(),
                   {framework, name, model, remarkText(model, modelRemarks(workload))});
    return columns;
}

std::vector<CardText> AIWorkloadsCard::otherTexts(const QRectF &place) const
{
    const auto [gpu, gpuCaption] = gpuTexts(m_otherBytes, place);
    const double left = place.left() + tileSide + tileGap;
    const double width = textsEnd({gpu, gpuCaption}, place) - left;
    CardText name{.text = otherName(),
                  .font = Theme::systemFont(12, QFont::DemiBold),
                  .color = Theme::textSecondary,
                  .maxWidth = width};
    name.baseline = {left, place.top() + firstLine.baseline(name.font)};
    CardText remark{.text = u"not attributed"_s,
                    .font = Theme::systemFont(10),
                    .color = Theme::textTertiary,
                    .maxWidth = width};
    remark.baseline = {left, place.top() + secondLine.baseline(Theme::systemFont(9))};
    return {name, remark, gpu, gpuCaption};
}

std::vector<CardText> AIWorkloadsCard::columnTexts(const AIWorkload &workload,
                                                   const QRectF &place) const
{
    const QString pid = pidText(workload);
    const auto [memory, memoryCaption] =
        valueTexts(place, place.right(), ByteFormatter::f().string(workload.memory),
                   Theme::textPrimary, hasGPUColumn() ? u"RAM · "_s + pid : pid);
    if (!hasGPUColumn())
        return {memory, memoryCaption};
    const auto [gpu, gpuCaption] = gpuTexts(workload.gpuMemory, place);
    return {memory, memoryCaption, gpu, gpuCaption};
}

std::array<CardText, 2> AIWorkloadsCard::gpuTexts(const std::optional<std::uint64_t> &bytes,
                                                  const QRectF &place) const
{
    const QColor color = bytes ? Theme::gpu : Theme::withOpacity(Theme::gpu, Theme::absentOpacity);
    return valueTexts(place, gpuRight(place), bytes ? ByteFormatter::f().string(*bytes) : u"–"_s,
                      color, m_gpuLabel);
}

double AIWorkloadsCard::textsEnd(const std::vector<CardText> &columns, const QRectF &place) const
{
    if (!hasGPUColumn())
        return place.right() - std::max(columns[0].width(), columns[1].width()) - minColumnGap;
    if (!barPlace(place).isNull())
        return barPlace(place).left() - columnGap;
    return gpuRight(place) - gpuColumn - minColumnGap;
}

void AIWorkloadsCard::paintBar(QPainter &painter, const std::optional<std::uint64_t> &bytes,
                               const QRectF &bar) const
{
    fillRounded(painter, bar, barHeight / 2, Theme::track);
    const double share = m_gpuTotal == 0
        ? 0
        : static_cast<double>(bytes.value_or(0)) / static_cast<double>(m_gpuTotal);
    if (bytes)
        fillShareBar(painter, bar, std::min(share, 1.0), Theme::gpu);
}

} // namespace corvane
