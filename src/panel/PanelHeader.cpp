#include "panel/PanelHeader.h"

#include "ui/TextLayout.h"
#include "ui/Theme.h"

#include <QPainter>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr TextLine nameLine{0, 16};
constexpr TextLine chipLine{17, 13};
constexpr double partsGap = 12; ///< At least, after the chip's name.

} // namespace

PanelHeader::PanelHeader(const QString &chipName, QWidget *parent)
    : AccessibleWidget(parent),
      m_chipName(singleLine(chipName))
{
    setFixedHeight(static_cast<int>(chipLine.bottom()));
}

void PanelHeader::show(const PowerText &power)
{
    if (power == m_power)
        return;
    m_power = power;
    announceText(0);
    update();
}

void PanelHeader::showEnergy(const QString &tip)
{
    if (tip == accessibleDescription())
        return;
    setToolTip(plainToolTip(tip));
    setAccessibleDescription(tip);
}

std::vector<AccessibleText> PanelHeader::accessibleTexts() const
{
    QString text = u"Corvane on "_s + m_chipName;
    if (!m_power.watts.isEmpty()) {
        text += u": "_s + m_power.watts + u' '
            + (m_power.parts.isEmpty() ? u"in all"_s : m_power.parts);
    }
    return {{.value = text, .place = rect()}};
}

std::vector<CardText> PanelHeader::texts() const
{
    static const QFont nameFont = Theme::systemFont(13, QFont::DemiBold);
    static const QFont chipFont = Theme::systemFont(10);
    const double nameBaseline = nameLine.baseline(nameFont);
    const double chipBaseline = chipLine.baseline(chipFont);
    const auto right = static_cast<double>(width());
    const double partsWidth =
        m_power.parts.isEmpty() ? 0 : partsGap + textWidth(m_power.parts, chipFont);
    return {{.text = u"Corvane"_s,
             .font = nameFont,
             .color = Theme::textPrimary,
             .baseline = {0, nameBaseline}},
            {.text = m_power.watts,
             .font = nameFont,
             .color = m_power.color,
             .alignment = Qt::AlignRight,
             .baseline = {right, nameBaseline}},
            {.text = m_chipName,
             .font = chipFont,
             .color = Theme::textTertiary,
             .baseline = {0, chipBaseline},
             .maxWidth = right - partsWidth},
            {.text = m_power.parts,
             .font = chipFont,
             .color = Theme::textTertiary,
             .alignment = Qt::AlignRight,
             .baseline = {right, chipBaseline}}};
}

void PanelHeader::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    for (const CardText &text : texts())
        text.paint(painter);
}

} // namespace corvane
