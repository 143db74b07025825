#include "controls/ContextMenu.h"

#include "threads/MainThread.h"
#include "ui/PixelGrid.h"
#include "ui/RoundedBox.h"
#include "ui/TextLayout.h"
#include "ui/Theme.h"

#include <QAction>
#include <QClipboard>
#include <QCommonStyle>
#include <QGuiApplication>
#include <QMenu>
#include <QPainter>
#include <QStyleHintReturnMask>
#include <QStyleOptionMenuItem>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr int radius = 10;
constexpr int margin = 5; ///< Between the edge of the menu and the rows.
constexpr int rowHeight = 24;
constexpr int rowRadius = 6;
constexpr int rowPadding = 8;  ///< Left and right of a row's text.
constexpr int checkWidth = 16; ///< Of the column of check marks, where there is one.
constexpr int keyGap = 24;     ///< Between the longest text and the column of keys.
constexpr int separatorHeight = 9;

bool isSeparator(const QStyleOptionMenuItem &item)
{
    return item.menuItemType == QStyleOptionMenuItem::Separator;
}

void paintRow(QPainter &painter, const QStyleOptionMenuItem &item)
{
    const bool isEnabled = item.state & QStyle::State_Enabled;
    const bool isChosen = isEnabled && (item.state & QStyle::State_Selected);
    if (isChosen)
        fillRounded(painter, item.rect, rowRadius, Theme::switchOn);

    const QRectF row = item.rect;
    const double baseline = TextLine{row.top(), row.height()}.baseline(item.font);
    const QString text = item.text.section(u'\t', 0, 0);
    const QString key = item.text.section(u'\t', 1);
    painter.setPen(isEnabled ? Theme::textPrimary : Theme::textTertiary);
    if (item.checked)
        drawText(painter, {row.left() + rowPadding, baseline}, u"✓"_s, item.font);
    const double left = row.left() + rowPadding + (item.menuHasCheckableItems ? checkWidth : 0);
    drawText(painter, {left, baseline}, text, item.font);
    if (!isChosen && isEnabled)
        painter.setPen(Theme::textSecondary);
    drawText(painter, {row.right() - rowPadding - item.reservedShortcutWidth, baseline}, key,
             item.font);
}

/// Paints a menu like the popovers, whatever the style of the desktop is: it opens over dark views.
/// Its keys begin in one column. For menus of plain commands, choices and separators.
class MenuStyle : public QCommonStyle {
public:
    int pixelMetric(PixelMetric metric, const QStyleOption *option,
                    const QWidget *widget) const override
    {
        switch (metric) {
        case PM_MenuHMargin:
        case PM_MenuVMargin:
            return margin;
        case PM_MenuPanelWidth:
        case PM_MenuDesktopFrameWidth:
            return 0;
        default:
            return QCommonStyle::pixelMetric(metric, option, widget);
        }
    }

    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returned) const override
    {
        auto *mask = qstyleoption_cast<QStyleHintReturnMask *>(returned);
        if (hint == SH_Menu_Mask && option && mask) {
            mask->region = roundedRegion(option->rect, radius);
            return 1;
        }
        if (hint == SH_Menu_MouseTracking)
            return 1;
        return QCommonStyle::styleHint(hint, option, widget, returned);
    }

    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                           const QWidget *widget) const override
    {
        const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option);
        if (type != CT_MenuItem || !item)
            return QCommonStyle::sizeFromContents(type, option, contents, widget);
        if (isSeparator(*item))
            return {2 * rowPadding, separatorHeight};
        const int checks = item->menuHasCheckableItems ? checkWidth : 0;
        return {contents.width() + 2 * rowPadding + keyGap + checks, rowHeight};
    }

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override
    {
        if (element == PE_FrameMenu)
            return; // Painted with the panel.
        if (element != PE_PanelMenu) {
            QCommonStyle::drawPrimitive(element, option, painter, widget);
            return;
        }
        painter->setRenderHint(QPainter::Antialiasing);
        fillRounded(*painter, option->rect, radius, Theme::popoverFill);
        strokeRounded(*painter, option->rect, radius, Theme::popoverStroke);
    }

    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override
    {
        if (element == CE_MenuEmptyArea)
            return; // Painted with the panel.
        const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option);
        if (element != CE_MenuItem || !item) {
            QCommonStyle::drawControl(element, option, painter, widget);
            return;
        }
        painter->setRenderHint(QPainter::Antialiasing);
        const QRectF row = item->rect;
        if (isSeparator(*item))
            fillHairline(*painter,
                         QRectF(row.left() + rowPadding, row.center().y() - 0.5,
                                row.width() - 2 * rowPadding, 1),
                         Theme::divider);
        else
            paintRow(*painter, *item);
    }
};

QMenu *makeMenu(QWidget &widget)
{
    auto *menu = new QMenu(&widget);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setAttribute(Qt::WA_TranslucentBackground); // Outside the round corners.
    auto *style = new MenuStyle;
    style->setParent(menu);
    menu->setStyle(style);
    menu->setFont(Theme::systemFont(12));
    return menu;
}

} // namespace

QMenu *popUpActions(QWidget &widget, const QPoint &globalPosition)
{
    assertMainThread();
    if (widget.actions().isEmpty())
        return nullptr;
    QMenu *menu = makeMenu(widget);
    menu->addActions(widget.actions());
    menu->popup(globalPosition);
    return menu;
}

QMenu *popUpCopy(QWidget &widget, const QString &text, const QPoint &globalPosition)
{
    assertMainThread();
    QMenu *menu = makeMenu(widget);
    QAction *copy = menu->addAction(u"Copy"_s);
    copy->setEnabled(!text.isEmpty());
    copy->setShortcut(QKeySequence::Copy);
    copy->setShortcutContext(Qt::WidgetShortcut); // Shown; the widget handles the key itself.
    QObject::connect(copy, &QAction::triggered,
                     [text] { QGuiApplication::clipboard()->setText(text); });
    if (!widget.window()->actions().isEmpty()) {
        menu->addSeparator();
        menu->addActions(widget.window()->actions());
    }
    menu->popup(globalPosition);
    return menu;
}

} // namespace corvane
