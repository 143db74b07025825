#include "controls/ContextMenu.h"
#include "support/Rendering.h"
#include "ui/TextLayout.h"
#include "ui/Theme.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QWidget>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

/// A menu with a disabled command, two with keys, and a separator.
struct OpenMenu {
    OpenMenu()
    {
        disabled.setEnabled(false);
        settings.setShortcut(Qt::CTRL | Qt::Key_Comma);
        about.setShortcut(Qt::Key_F1);
        separator.setSeparator(true);
        widget.addActions({&disabled, &about, &separator, &settings});
        widget.show();
        menu = popUpActions(widget, {20, 30});
    }

    ~OpenMenu() { delete menu; }

    /// The first column of a row, right of `from`, that is brighter than the menu; in points.
    double firstInk(const QImage &image, QAction &action, double from) const
    {
        const QRect row = menu->actionGeometry(&action);
        for (double x = from; x < row.right() - 2; x += 0.5) {
            for (double y = row.top() + 2; y < row.bottom() - 2; y += 0.5) {
                if (pixelAt(image, x, y).lightness() > 100)
                    return x;
            }
        }
        return -1;
    }

    QWidget widget;
    QAction disabled{u"Check for Updates…"_s};
    QAction about{u"About"_s};
    QAction separator;
    QAction settings{u"Settings…"_s};
    QPointer<QMenu> menu;
};

} // namespace

class TestContextMenu : public QObject {
    Q_OBJECT

private slots:
    void showsTheWidgetsActionsAndDeletesItself();
    void aWidgetWithoutActionsHasNoMenu();
    void looksLikeAPopover();
    void hasRowsOf24();
    void fillsTheRowUnderThePointer();
    void keysBeginInOneColumn();
    void disabledCommandsAreFaint();
};

void TestContextMenu::showsTheWidgetsActionsAndDeletesItself()
{
    QWidget widget;
    QAction first(u"First"_s);
    QAction second(u"Second"_s);
    widget.addActions({&first, &second});
    widget.show();
    const QPointer<QMenu> menu = popUpActions(widget, {20, 30});
    QVERIFY(menu);
    QCOMPARE(menu->pos(), QPoint(20, 30));
    QCOMPARE(menu->actions(), (QList<QAction *>{&first, &second}));

    const QSignalSpy triggered(&second, &QAction::triggered);
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(&second).center());
    QCOMPARE(triggered.count(), 1);
    QTRY_VERIFY(!menu);
}

void TestContextMenu::aWidgetWithoutActionsHasNoMenu()
{
    QWidget widget;
    QCOMPARE(popUpActions(widget, {}), nullptr);
    QCOMPARE(QApplication::activePopupWidget(), nullptr);
}

void TestContextMenu::looksLikeAPopover()
{
    const OpenMenu open;
    const QImage image = rendered(*open.menu, 2);
    const double middle = open.menu->width() / 2.0;
    QVERIFY(hasRoundCorner(rendered(*open.menu, 8), {0, 0}, 10, Theme::popoverFill));
    QVERIFY(isClose(pixelAt(image, middle, 3), Theme::popoverFill));
    QVERIFY(pixelAt(image, middle, 0.5).lightness() > Theme::popoverFill.lightness() + 10);
    QVERIFY(!open.menu->mask().contains(QPoint(0, 0)));
    QVERIFY(open.menu->mask().contains(QPoint(4, 4)));
}

void TestContextMenu::hasRowsOf24()
{
    OpenMenu open;
    for (QAction *action : {&open.disabled, &open.about, &open.settings})
        QCOMPARE(open.menu->actionGeometry(action).height(), 24);
    QCOMPARE(open.menu->actionGeometry(&open.disabled).topLeft(), QPoint(5, 5));
    QCOMPARE(open.menu->height(), 5 + 24 + 24 + 9 + 24 + 5);
}

void TestContextMenu::fillsTheRowUnderThePointer()
{
    OpenMenu open;
    open.menu->setActiveAction(&open.settings);
    const QImage image = rendered(*open.menu, 2);
    const QRectF row = open.menu->actionGeometry(&open.settings);
    QCOMPARE(pixelAt(image, row.center().x(), row.top() + 1), Theme::switchOn);
    QCOMPARE(pixelAt(image, row.left() + 1, row.center().y()), Theme::switchOn);
    QVERIFY(hasRoundCorner(rendered(*open.menu, 8), row.topLeft(), 6, Theme::switchOn,
                           Theme::popoverFill));
    QVERIFY(isClose(pixelAt(image, row.left() - 1, row.center().y()), Theme::popoverFill));
}

void TestContextMenu::keysBeginInOneColumn()
{
    OpenMenu open;
    const QImage image = rendered(*open.menu, 2);
    const double afterTexts = textWidth(open.disabled.text(), open.menu->font()) + 5 + 8 + 12;
    const double key = open.firstInk(image, open.settings, afterTexts);
    QVERIFY(key > afterTexts);
    // The sides of "F" and "C" differ by less than a point and a half.
    QVERIFY(std::abs(open.firstInk(image, open.about, afterTexts) - key) <= 1.5);
}

void TestContextMenu::disabledCommandsAreFaint()
{
    OpenMenu open;
    const QImage image = rendered(*open.menu, 2);
    const auto brightest = [&](QAction &action) {
        const QRect row = open.menu->actionGeometry(&action);
        int most = 0;
        for (double x = row.left(); x < row.right(); x += 0.5) {
            for (double y = row.top(); y < row.bottom(); y += 0.5)
                most = std::max(most, pixelAt(image, x, y).lightness());
        }
        return most;
    };
    QVERIFY(brightest(open.disabled) < 170);
    QVERIFY(brightest(open.settings) > 220);
}

QTEST_MAIN(TestContextMenu)
#include "tst_ContextMenu.moc"
