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

void PanelHeader::paintEvent(QPaintEvent *)
{
    static const QFont nameFont = Theme::systemFont(13, QFont::DemiBold);
    static const QFont chipFont = Theme::systemFont(10);
    QPainter painter(this);
    painter.setPen(Theme::textPrimary);
    drawText(painter, QPointF(0, nameLine.baseline(nameFont)), u"Corvane"_s, nameFont);
    painter.setPen(m_power.color);
    drawTextRight(painter, QPointF(width(), nameLine.baseline(nameFont)), m_power.watts, nameFont);
    painter.setPen(Theme::textTertiary);
    const double chipBaseline = chipLine.baseline(chipFont);
    drawTextRight(painter, QPointF(width(), chipBaseline), m_power.parts, chipFont);
    const double partsWidth =
        m_power.parts.isEmpty() ? 0 : partsGap + textWidth(m_power.parts, chipFont);
    drawText(painter, QPointF(0, chipBaseline), elided(m_chipName, chipFont, width() - partsWidth),
             chipFont);
}

} // namespace corvane
