#include "lists/ProcessCard.h"

#include "cards/InfoTexts.h"
#include "lists/RowList.h"
#include "lists/ShareBar.h"
#include "ui/ByteFormatter.h"
#include "ui/CardStyle.h"
#include "ui/NumberText.h"
#include "ui/RoundedBox.h"
#include "ui/Theme.h"

#include <QPainter>

#include <algorithm>
#include <utility>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr int rowHeight = 20;
constexpr int listFoot = 8; ///< Between the list and the card's bottom edge.
constexpr double columnGap = 10;
constexpr double nameWidth = 130;
constexpr double bytesWidth = 60;
constexpr double shareWidth = 38;
constexpr double gpuWidth = 84;
constexpr double barHeight = 6;

} // namespace

double footprintFraction(std::uint64_t memory, std::uint64_t largest)
{
    return largest == 0 ? 0 : static_cast<double>(memory) / static_cast<double>(largest);
}

ProcessCard::ProcessCard(QWidget *parent)
    : Card({u"list.bullet.rectangle.portrait"_s, u"Top Processes by RAM"_s, Theme::textPrimary},
           infoText(InfoTopic::processes), parent),
      m_empty(addText({.text = u"No process data yet"_s,
                       .font = Theme::systemFont(11),
                       .color = Theme::textSecondary,
                       .alignment = Qt::AlignHCenter})),
      m_list(new RowList(
          u"Processes"_s,
          {.height = rowHeight,
           .margin = CardStyle::padding,
           .paint = [this](QPainter &painter, int row,
                           const QRectF &place) { paintRow(painter, row, place); },
           .accessibleRow =
               [this](int row) {
                   const Row &shown = m_rows[static_cast<std::size_t>(row)];
                   const QString gpu =
                       shown.gpuBytes.isEmpty() ? QString() : u", "_s + shown.gpuBytes;
                   return AccessibleText{shown.name, shown.bytes + u", "_s + shown.share + gpu};
               }},
          this))
{
    m_list->hide();
}

void ProcessCard::show(const std::vector<ProcessRow> &processes, std::uint64_t totalMemory)
{
    const std::uint64_t largest = processes.empty() ? 0 : processes.front().memory;
    std::vector<Row> rows;
    rows.reserve(processes.size());
    for (const ProcessRow &process : processes) {
        const QString gpuBytes = process.gpuMemory && !m_gpuLabel.isEmpty()
            ? ByteFormatter::f().string(*process.gpuMemory) + u' ' + m_gpuLabel
            : QString();
        rows.push_back({singleLine(process.name), ByteFormatter::f().string(process.memory),
                        fixedText(footprintFraction(process.memory, totalMemory) * 100, 1) + u'%',
                        gpuBytes, std::min(footprintFraction(process.memory, largest), 1.0)});
    }
    const bool hasGPUColumn = m_hasGPUColumn
        || std::ranges::any_of(rows, [](const Row &row) { return !row.gpuBytes.isEmpty(); });
    if (std::exchange(m_hasGPUColumn, hasGPUColumn) != hasGPUColumn)
        m_list->update();
    setText(m_empty, rows.empty() ? u"No process data yet"_s : QString());

    const std::vector<Row> previous = std::exchange(m_rows, std::move(rows));
    m_list->setRowCount(static_cast<int>(m_rows.size()));
    m_list->setVisible(!m_rows.empty());
    for (std::size_t i = 0; i < std::min(previous.size(), m_rows.size()); ++i) {
        if (previous[i] != m_rows[i])
            m_list->updateRow(static_cast<int>(i));
    }
}

void ProcessCard::setGPUMemoryLabel(const QString &label)
{
    if (label == m_gpuLabel)
        return;
    m_gpuLabel = label;
    m_hasGPUColumn = m_hasGPUColumn && !label.isEmpty();
    m_list->update();
}

void ProcessCard::layOut()
{
    const double listHeight = cardSize().height() - bodyTop - listFoot;
    place(*m_list, QRectF(0, bodyTop, cardSize().width(), listHeight));
    const double middle = (bodyTop + cardSize().height() - CardStyle::padding) / 2;
    m_empty.baseline = {cardSize().width() / 2, TextLine{middle, 0}.baseline(m_empty.font)};
}

void ProcessCard::paintRow(QPainter &painter, int index, const QRectF &place) const
{
    const Row &row = m_rows[static_cast<std::size_t>(index)];
    const QFont nameFont = Theme::systemFont(11);
    const double base = TextLine{place.top() - 0.5, rowHeight}.baseline(nameFont);
    CardText text{.text = row.name,
                  .font = nameFont,
                  .color = Theme::textPrimary,
                  .baseline = {place.left(), base},
                  .maxWidth = nameWidth};
    text.paint(painter);

    const double shareEnd = place.right();
    const double bytesEnd = shareEnd - shareWidth - columnGap;
    const double barLeft = place.left() + nameWidth + columnGap;
    const double gpuEnd = bytesEnd - bytesWidth - columnGap;
    const double barEnd = m_hasGPUColumn ? gpuEnd - gpuWidth - columnGap : gpuEnd;
    const QRectF bar(barLeft, place.center().y() - barHeight / 2, barEnd - barLeft, barHeight);
    fillRounded(painter, bar, barHeight / 2, Theme::track);

    fillShareBar(painter, bar, row.fraction, Theme::memory);

    painter.setPen(Theme::textSecondary);
    const QFont font = Theme::systemFont(10);
    drawTextRight(painter, {bytesEnd, base}, row.bytes, font);
    painter.setPen(Theme::textTertiary);
    drawTextRight(painter, {shareEnd, base}, row.share, font);
    if (m_hasGPUColumn) {
        painter.setPen(Theme::gpu);
        drawTextRight(painter, {gpuEnd, base}, row.gpuBytes, font);
    }
}

} // namespace corvane
