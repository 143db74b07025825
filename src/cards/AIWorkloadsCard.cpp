#include "cards/AIWorkloadsCard.h"

#include "cards/FrameworkColor.h"
#include "cards/InfoTexts.h"
#include "cards/RowList.h"
#include "ui/ByteFormatter.h"
#include "ui/CardStyle.h"
#include "ui/Icon.h"
#include "ui/RoundedBox.h"
#include "ui/Theme.h"

#include <QPainter>

#include <algorithm>
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

constexpr double tagGap = 8;
constexpr double tagPadding = 6;
constexpr double tagHeight = 16;
constexpr double tagRadius = 5;

// The empty state: icon, line and hint, centred in the body as one block.
constexpr double emptyIconSide = 24;
constexpr double emptyHeight = 68;
constexpr TextLine emptyLine{34, 15.5};
constexpr TextLine emptyHintLine{54, 14};

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
      m_count(addText({.name = u"AI workloads"_s,
                       .font = Theme::systemFont(10, QFont::DemiBold),
                       .color = Theme::textSecondary})),
      m_emptyLine(addText({.font = Theme::systemFont(12, QFont::Medium),
                           .color = Theme::textPrimary,
                           .alignment = Qt::AlignHCenter})),
      m_emptyHint(addText({.font = Theme::systemFont(11),
                           .color = Theme::textTertiary,
                           .alignment = Qt::AlignHCenter})),
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

    const QRectF previousTag = tagRect();
    setText(m_count, m_workloads.empty() ? QString() : u"%1 active"_s.arg(m_workloads.size()));
    if (tagRect() != previousTag)
        updateShape(previousTag, tagRect());
    if (previous.empty() != m_workloads.empty())
        showEmptyState(m_workloads.empty());

    m_list->setRowCount(static_cast<int>(m_workloads.size()));
    for (std::size_t i = 0; i < std::min(previous.size(), m_workloads.size()); ++i) {
        if (previous[i] != m_workloads[i])
            m_list->updateRow(static_cast<int>(i));
    }
}

void AIWorkloadsCard::showEmptyState(bool empty)
{
    m_list->setVisible(!empty);
    setText(m_emptyLine, empty ? u"No AI inference detected"_s : QString());
    setText(m_emptyHint,
            empty ? u"Launch Ollama, MLX, llama.cpp, LM Studio, ComfyUI, vLLM…"_s : QString());
    update(emptyIconRect().toAlignedRect());
}

AccessibleText AIWorkloadsCard::accessibleRow(int index) const
{
    const AIWorkload &workload = m_workloads[static_cast<std::size_t>(index)];
    return {displayName(workload.framework) + u", "_s + workload.processName,
            QStringList{modelText(workload), ByteFormatter::f().string(workload.memory),
                        pidText(workload)}
                .join(u", "_s)};
}

void AIWorkloadsCard::layOut()
{
    m_list->setGeometry(0, bodyTop, width(), height() - bodyTop - listFoot);
    m_count.baseline = {titleText().bounds().right() + tagGap + tagPadding - 2,
                        TextLine{CardStyle::padding, headerHeight}.baseline(m_count.font)};
    const QRectF icon = emptyIconRect();
    const double contentWidth = contentRight() - contentLeft();
    for (CardText *line : {&m_emptyLine, &m_emptyHint})
        line->maxWidth = contentWidth;
    m_emptyLine.baseline = {width() / 2.0, icon.top() + emptyLine.baseline(m_emptyLine.font)};
    m_emptyHint.baseline = {width() / 2.0, icon.top() + emptyHintLine.baseline(m_emptyHint.font)};
}

QRectF AIWorkloadsCard::tagRect() const
{
    if (m_count.text.isEmpty())
        return {};
    const double top = CardStyle::padding + (headerHeight - tagHeight) / 2.0;
    return {m_count.baseline.x() - tagPadding, top, m_count.width() + 2 * tagPadding, tagHeight};
}

QRectF AIWorkloadsCard::emptyIconRect() const
{
    const double top = (bodyTop + height() - CardStyle::padding - emptyHeight) / 2.0;
    return {(width() - emptyIconSide) / 2.0, top, emptyIconSide, emptyIconSide};
}

void AIWorkloadsCard::paintShapes(QPainter &painter, const QRect &dirty)
{
    if (m_workloads.empty()) {
        if (emptyIconRect().intersects(dirty))
            paintIcon(painter, u"moon.zzz"_s, emptyIconRect(), Theme::textSecondary,
                      SymbolWeight::light);
        return;
    }
    fillRounded(painter, tagRect(), tagRadius, Theme::tag);
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

    const QFont memoryFont = Theme::systemFont(11, QFont::DemiBold);
    const QFont frameworkFont = Theme::systemFont(12, QFont::DemiBold);
    const QFont pidFont = Theme::systemFont(9);
    const double firstBaseline = place.top() + firstLine.baseline(frameworkFont);
    const double secondBaseline = place.top() + secondLine.baseline(pidFont);
    const CardText memory{
        .text = ByteFormatter::f().string(workload.memory),
        .font = memoryFont,
        .color = Theme::textPrimary,
        .alignment = Qt::AlignRight,
        .baseline = {place.right(), place.top() + firstLine.baseline(memoryFont)}};
    const CardText pid{.text = pidText(workload),
                       .font = pidFont,
                       .color = Theme::textTertiary,
                       .alignment = Qt::AlignRight,
                       .baseline = {place.right(), secondBaseline}};
    const double textLeft = tile.right() + tileGap;
    const double textEnd = place.right() - std::max(memory.width(), pid.width()) - minColumnGap;
    const CardText framework{.text = displayName(workload.framework),
                             .font = frameworkFont,
                             .color = color,
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
    for (const CardText &text : {memory, pid, framework, name, model})
        text.paint(painter);
}

} // namespace corvane
