#include "panel/PanelHeader.h"

#include "chip/ChipIdentity.h"
#include "ui/NumberText.h"
#include "ui/TextLayout.h"
#include "ui/Theme.h"

#include <QPainter>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr TextLine nameLine{0, 16};
constexpr TextLine chipLine{17, 13};

} // namespace

PanelHeader::PanelHeader(QWidget *parent) : AccessibleWidget(parent)
{
    setFixedHeight(static_cast<int>(chipLine.bottom()));
}

void PanelHeader::show(std::optional<double> watts)
{
    const QString power = wattsText(watts, 1);
    if (power == m_power)
        return;
    m_power = power;
    announceText(0);
    update();
}

std::vector<AccessibleText> PanelHeader::accessibleTexts() const
{
    return {{.value = u"Corvane on %1: %2 in all"_s.arg(SystemInfo::chipName(), m_power),
             .place = rect()}};
}

void PanelHeader::paintEvent(QPaintEvent *)
{
    static const QFont nameFont = Theme::systemFont(13, QFont::DemiBold);
    static const QFont chipFont = Theme::systemFont(10);
    QPainter painter(this);
    painter.setPen(Theme::textPrimary);
    drawText(painter, QPointF(0, nameLine.baseline(nameFont)), u"Corvane"_s, nameFont);
    painter.setPen(Theme::power);
    drawTextRight(painter, QPointF(width(), nameLine.baseline(nameFont)), m_power, nameFont);
    painter.setPen(Theme::textTertiary);
    drawText(painter, QPointF(0, chipLine.baseline(chipFont)),
             elided(SystemInfo::chipName(), chipFont, width()), chipFont);
}

} // namespace corvane
