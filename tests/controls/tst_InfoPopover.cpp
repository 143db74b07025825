#include "controls/InfoPopover.h"
#include "controls/InfoWindow.h"
#include "support/Rendering.h"
#include "ui/Theme.h"

#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

class TestInfoPopover : public QObject {
    Q_OBJECT

private slots:
    void isPlacedAtItsAnchor_data();
    void isPlacedAtItsAnchor();
    void staysOpenOnAPressInside();
    void closesOnEscape();
    void isAsHighAsItsText();
    void showsMarkdownWithoutMarks();
    void paintsBodyAndArrow_data();
    void paintsBodyAndArrow();
    void castsAShadow();
    void codeStaysOnItsBackground_data() { paintsBodyAndArrow_data(); }
    void codeStaysOnItsBackground();
};

void TestInfoPopover::isPlacedAtItsAnchor_data()
{
    QTest::addColumn<QRectF>("anchor");
    QTest::addColumn<PopoverPlacement>("expected");
    const QRectF middle(500, 20, 20, 20);
    QTest::newRow("centred with 10 for the arrow")
        << middle << PopoverPlacement{{340, 50, 340, 200}, {510, 42}, true};
    QTest::newRow("pushed from the right edge")
        << QRectF(960, 20, 20, 20) << PopoverPlacement{{652, 50, 340, 200}, {970, 42}, true};
    QTest::newRow("pushed from the left edge")
        << QRectF(30, 20, 20, 20) << PopoverPlacement{{8, 50, 340, 200}, {40, 42}, true};
    QTest::newRow("the arrow keeps its distance from the corner")
        << QRectF(975, 20, 20, 20) << PopoverPlacement{{652, 50, 340, 200}, {972, 42}, true};
    QTest::newRow("above when there is no room below")
        << QRectF(500, 600, 20, 20) << PopoverPlacement{{340, 390, 340, 200}, {510, 598}, false};
    QTest::newRow("below while it just fits")
        << QRectF(500, 562, 20, 20) << PopoverPlacement{{340, 592, 340, 200}, {510, 584}, true};
}

void TestInfoPopover::isPlacedAtItsAnchor()
{
    QFETCH(QRectF, anchor);
    QTEST(placePopover(anchor, {340, 200}, {1000, 800}), "expected");
}

void TestInfoPopover::staysOpenOnAPressInside()
{
    InfoWindow window;
    window.first.click();
    window.press(window.first.popover()->geometry().center());
    QVERIFY(window.first.popover());
    // The corner beside the arrow is outside.
    window.press(window.first.popover()->geometry().topLeft() + QPoint(2, 2));
    QVERIFY(!window.first.popover());
}

void TestInfoPopover::closesOnEscape()
{
    InfoWindow window;
    window.first.click();
    QTest::keyClick(&window.widget, Qt::Key_Escape);
    QVERIFY(!window.first.popover());
}

void TestInfoPopover::isAsHighAsItsText()
{
    InfoWindow window;
    window.first.click();
    window.second.click();
    QCOMPARE(window.first.popover()->bodySize(), QSize(340, 14 + 17 + 8 + 16 + 14));
    QCOMPARE(window.second.popover()->bodySize(), QSize(340, 14 + 17 + 8 + 3 * 16 + 14));
}

void TestInfoPopover::showsMarkdownWithoutMarks()
{
    InfoWindow window;
    window.first.click();
    const std::vector<AccessibleText> texts = window.first.popover()->accessibleTexts();
    QCOMPARE(texts.size(), std::size_t(2));
    QCOMPARE(texts[0].value, u"First"_s);
    QCOMPARE(texts[1].value, u"Bold text"_s);
}

void TestInfoPopover::paintsBodyAndArrow_data()
{
    QTest::addColumn<double>("scale");
    QTest::newRow("scale 1") << 1.0;
    QTest::newRow("scale 2") << 2.0;
}

void TestInfoPopover::paintsBodyAndArrow()
{
    QFETCH(double, scale);
    InfoWindow window;
    window.first.click();
    InfoPopover &popover = *window.first.popover();
    const QImage image = rendered(popover, scale);
    const double tipX = 400 + 10.5 - popover.x();
    QVERIFY(isClose(pixelAt(image, tipX, 6), Theme::popoverFill));
    QCOMPARE(pixelAt(image, tipX - 20, 4).alpha(), 0);
    QCOMPARE(pixelAt(image, 0.5, 8.5).alpha(), 0);
    QVERIFY(isClose(pixelAt(image, 5, 40), Theme::popoverFill));
    // The stroke lies inside the edge: white at 0.12 over the fill.
    QVERIFY(isClose(pixelAt(image, 0.5, 50), QColor(64, 68, 77)));
}

/// The shadow is darker below the body than above it.
void TestInfoPopover::castsAShadow()
{
    InfoWindow window;
    const QColor ground = pixelAt(onScreen(window.widget), 410, 300);
    window.first.click();
    const QRect popover = window.first.popover()->geometry();
    const QImage screen = onScreen(window.widget);
    const auto darkness = [&](int x, int y) {
        return ground.lightness() - pixelAt(screen, x, y).lightness();
    };
    QVERIFY(darkness(410, popover.bottom() + 5) > 20);
    QVERIFY(darkness(popover.right() + 5, popover.center().y()) > 20);
    QVERIFY(darkness(410, popover.bottom() + 5) > darkness(300, popover.top() - 5));
    QCOMPARE(darkness(410, popover.bottom() + 60), 0);
}

void TestInfoPopover::codeStaysOnItsBackground()
{
    QFETCH(double, scale);
    InfoWindow window;
    InfoButton button({u"Code"_s, u'`' + QString(40, u'H') + u'`'}, &window.widget);
    button.show();
    button.click();
    const QImage image = rendered(*button.popover(), scale);
    const double line = 8 + 14 + 17 + 8 + 7; // The arrow, the title and half a line.
    const int ground = Theme::popoverFill.lightness();
    double groundEnd = 0;
    double inkEnd = 0;
    for (double x = 14; x < 330; x += 1 / scale) {
        const int lightness = pixelAt(image, x, line).lightness();
        groundEnd = lightness > ground + 8 ? x : groundEnd;
        inkEnd = lightness > ground + 60 ? x : inkEnd;
    }
    QVERIFY(inkEnd > 14 + 200);
    QVERIFY2(groundEnd - inkEnd > 1.4 && groundEnd - inkEnd < 5,
             qPrintable(u"%1 to %2"_s.arg(inkEnd).arg(groundEnd)));
}

QTEST_MAIN(TestInfoPopover)
#include "tst_InfoPopover.moc"
