#include "dashboard/DashboardHeader.h"

#include "controls/Logo.h"
#include "controls/WindowBackground.h"
#include "ui/Theme.h"

#include <QPaintEvent>
#include <QPainter>

#include <algorithm>
#include <utility>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr double logoSide = 28;
constexpr double gap = 12; ///< Between the items of the line.
constexpr double statGap = 18;
constexpr QStringView noteSeparator = u" · "; ///< Between the name of the chip and the note.
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
      m_note(m_chip),
      m_choice(new WindowChoice(this))
{
    connect(m_choice, &WindowChoice::chosenByUser, this, &DashboardHeader::historyWindowChosen);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleName(u"Corvane"_s);
    m_name.font.setLetterSpacing(QFont::AbsoluteSpacing, -0.1);
    m_name.baseline = {logoSide + gap, nameLine.baseline(m_name.font)};
    m_chip.baseline = {logoSide + gap, chipLine.baseline(m_chip.font)};
    m_note.name = u"Note"_s;
    m_note.text.clear();
    m_note.color = Theme::textTertiary;
}

void DashboardHeader::show(const SystemMetrics &current)
{
    setNote(machineNote(current));
    setNumbers(quickNumbers(current));
}

void DashboardHeader::setNumbers(const std::vector<QuickNumber> &numbers)
{
    if (!std::ranges::equal(numbers, m_stats, {}, &QuickNumber::label,
                            [](const QuickStat &stat) { return stat.label.text; })) {
        m_stats.clear();
        for (const QuickNumber &number : numbers)
            m_stats.push_back(
                {statLabel(number.label), statValue(number.name, number.color), number.minWidth});
        layOut();
    }
    const int firstIndex = m_note.text.isEmpty() ? 2 : 3;
    for (std::size_t i = 0; i < m_stats.size(); ++i) {
        QuickStat &stat = m_stats[i];
        if (stat.value.text == numbers[i].value && stat.value.color == numbers[i].color)
            continue;
        const double previousWidth = stat.width();
        update(stat.value.bounds().toAlignedRect());
        stat.value.text = numbers[i].value;
        stat.value.color = numbers[i].color;
        update(stat.value.bounds().toAlignedRect());
        announceText(static_cast<int>(i) + firstIndex);
        if (stat.width() != previousWidth)
            layOut();
    }
}

void DashboardHeader::setHistoryWindow(HistoryWindow window)
{
    m_choice->setChosen(window);
}

QWidget *DashboardHeader::lastInTabOrder() const
{
    return m_choice->lastInTabOrder();
}

void DashboardHeader::setNote(const QString &note)
{
    const QString text = note.isEmpty() ? note : noteSeparator.toString() + note;
    if (text == m_note.text)
        return;
    m_note.text = text;
    layOut();
}

std::vector<CardText> DashboardHeader::texts() const
{
    std::vector<CardText> texts{m_name, m_chip};
    if (!m_note.text.isEmpty())
        texts.push_back(m_note);
    for (const QuickStat &stat : m_stats)
        texts.insert(texts.end(), {stat.label, stat.value});
    return texts;
}

std::vector<AccessibleText> DashboardHeader::accessibleTexts() const
{
    std::vector<AccessibleText> texts{m_name.accessible(), m_chip.accessible()};
    if (!m_note.text.isEmpty()) {
        AccessibleText note = m_note.accessible();
        note.value.remove(0, noteSeparator.size());
        texts.push_back(std::move(note));
    }
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
    right -= m_choice->width();
    m_choice->move(static_cast<int>(right), (height() - m_choice->height()) / 2);
    right -= gap;
    m_chip.maxWidth = std::max(right - m_chip.baseline.x(), 1.0);
    m_note.baseline = {m_chip.baseline.x() + m_chip.width(), m_chip.baseline.y()};
    m_note.maxWidth = std::max(right - m_note.baseline.x(), 1.0);
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
