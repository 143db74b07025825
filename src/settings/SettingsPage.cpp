#include "settings/SettingsPage.h"

#include "controls/Switch.h"
#include "settings/SettingsNote.h"
#include "threads/MainThread.h"
#include "ui/PixelGrid.h"
#include "ui/RoundedBox.h"
#include "ui/TextLayout.h"
#include "ui/Theme.h"

#include <QPainter>

namespace corvane {

namespace {

constexpr int padding = 20;
constexpr TextLine headingLine{19.5, 16};
constexpr int groupTop = 44;
constexpr int rowHeight = 40;
constexpr double radius = 10;
constexpr int noteGap = 8;

const QFont &headingFont()
{
    static const QFont font = Theme::systemFont(13, QFont::DemiBold);
    return font;
}

} // namespace

SettingsPage::SettingsPage(const QString &heading, int rowCount, QWidget *parent)
    : AccessibleWidget(parent),
      m_heading(heading),
      m_rowCount(rowCount)
{
    assertMainThread();
    setAccessibleName(heading);
}

std::vector<AccessibleText> SettingsPage::accessibleTexts() const
{
    return {{{}, m_heading, QRectF(padding, headingLine.top, row(0).width(), headingLine.height)}};
}

/// All rows but the first have a line along their top.
QRect SettingsPage::row(int index) const
{
    const int line = index > 0 ? 1 : 0;
    return {padding, groupTop + index * rowHeight + line, width() - 2 * padding, rowHeight - line};
}

int SettingsPage::groupBottom() const
{
    return groupTop + m_rowCount * rowHeight;
}

int SettingsPage::placeNote(SettingsNote &note, int top) const
{
    if (note.isHidden())
        return top;
    const int width = row(0).width() - 2 * Switch::padding;
    const int height = note.heightForWidth(width);
    note.setGeometry(padding + Switch::padding, top + noteGap, width, height);
    return top + noteGap + height;
}

void SettingsPage::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Theme::textPrimary);
    drawText(painter, {padding, headingLine.baseline(headingFont())}, m_heading, headingFont());

    const QRectF group(padding, groupTop, row(0).width(), groupBottom() - groupTop);
    fillRounded(painter, group, radius, Theme::cardFill);
    for (int index = 1; index < m_rowCount; ++index)
        fillHairline(painter, QRectF(padding + 1, row(index).top() - 1, row(0).width() - 2, 1),
                     Theme::cardStroke);
    strokeRounded(painter, group, radius, Theme::cardStroke);
}

} // namespace corvane
