#include "settings/SettingsTabs.h"

#include "threads/MainThread.h"
#include "ui/Icon.h"
#include "ui/RoundedBox.h"
#include "ui/TextLayout.h"
#include "ui/Theme.h"

#include <QPainter>

namespace corvane {

namespace {

constexpr QSizeF plate{84, 44};
constexpr double gap = 4; ///< Between plates.
constexpr double radius = 7;
constexpr double symbolSize = 18;
constexpr double symbolTop = 4.5; ///< In the plate.
constexpr TextLine nameLine{25.5, 13};

} // namespace

SettingsTabs::SettingsTabs(QWidget *parent) : QTabBar(parent)
{
    assertMainThread();
    setDrawBase(false);
    setExpanding(false);
    setUsesScrollButtons(false);
}

void SettingsTabs::addTab(const QString &symbol, const QString &name)
{
    setTabData(QTabBar::addTab(name), symbol);
}

QSize SettingsTabs::tabSizeHint(int) const
{
    return {static_cast<int>(plate.width() + gap), barHeight - 1};
}

void SettingsTabs::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    for (int index = 0; index < count(); ++index)
        paintTab(painter, index);
}

void SettingsTabs::paintTab(QPainter &painter, int index) const
{
    const bool isChosen = index == currentIndex();
    QRectF place({}, plate);
    place.moveCenter(QRectF(tabRect(index)).center());
    if (isChosen)
        fillRounded(painter, place, radius, Theme::chosenTab);
    if (isChosen && hasFocus())
        paintFocusRing(painter, place, radius);

    const QColor &color = isChosen ? Theme::chosenTabText : Theme::textSecondary;
    const QFont font = Theme::systemFont(11, isChosen ? QFont::Medium : QFont::Normal);
    const double middle = place.center().x();
    paintIcon(painter, tabData(index).toString(),
              QRectF(middle - symbolSize / 2, place.top() + symbolTop, symbolSize, symbolSize),
              color);
    painter.setPen(color);
    drawText(painter,
             {middle - textWidth(tabText(index), font) / 2, place.top() + nameLine.baseline(font)},
             tabText(index), font);
}

} // namespace corvane
