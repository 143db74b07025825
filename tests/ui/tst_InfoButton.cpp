#include "cards/InfoTexts.h"
#include "support/Rendering.h"
#include "ui/InfoButton.h"
#include "ui/InfoPopover.h"
#include "ui/Theme.h"

#include <QAccessible>
#include <QApplication>
#include <QEnterEvent>
#include <QSignalSpy>
#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

/// A window of the dashboard's least size with two info buttons.
struct Window {
    Window()
    {
        widget.resize(920, 760);
        first.move(400, 30);
        second.move(870, 300);
        widget.show();
    }

    void press(const QPoint &place)
    {
        QWidget *target = widget.childAt(place);
        QTest::mouseClick(target ? target : &widget, Qt::LeftButton, {},
                          target ? target->mapFrom(&widget, place) : place);
    }

    QWidget widget;
    InfoButton first{{u"First"_s, u"**Bold** text"_s}, &widget};
    InfoButton second{{u"Second"_s, u"a\n\nb"_s}, &widget};
};

} // namespace

class TestInfoButton : public QObject {
    Q_OBJECT

private slots:
    void isPlacedUnderItsAnchor_data();
    void isPlacedUnderItsAnchor();
    void togglesByClick();
    void takesClicksInItsWholeSquare();
    void togglesByKeys_data();
    void togglesByKeys();
    void closesOnAPressElsewhere();
    void staysOpenOnAPressInside();
    void closesOnEscape();
    void closesWhenTheWindowIsLeft();
    void closesWithTheButton();
    void leavesOtherPopoversAlone();
    void survivesItsWindow();
    void growsDownwards();
    void fitsTheLeastWindow();
    void rendersMarks();
    void paintsBodyAndArrow_data();
    void paintsBodyAndArrow();
    void castsAShadow();
    void keepsCodeOnItsGround_data() { paintsBodyAndArrow_data(); }
    void keepsCodeOnItsGround();
    void answersThePointer();
    void showsItsFocus();
    void canBeRead();
};

void TestInfoButton::isPlacedUnderItsAnchor_data()
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
    QTest::newRow("the arrow keeps off the corner")
        << QRectF(975, 20, 20, 20) << PopoverPlacement{{652, 50, 340, 200}, {972, 42}, true};
    QTest::newRow("above when there is no room below")
        << QRectF(500, 600, 20, 20) << PopoverPlacement{{340, 390, 340, 200}, {510, 598}, false};
    QTest::newRow("below while it just fits")
        << QRectF(500, 562, 20, 20) << PopoverPlacement{{340, 592, 340, 200}, {510, 584}, true};
}

void TestInfoButton::isPlacedUnderItsAnchor()
{
    QFETCH(QRectF, anchor);
    QTEST(placePopover(anchor, {340, 200}, {1000, 800}), "expected");
}

void TestInfoButton::togglesByClick()
{
    Window window;
    QVERIFY(!window.first.isShowing());
    QTest::mouseClick(&window.first, Qt::LeftButton);
    QVERIFY(window.first.isShowing());
    QVERIFY(window.first.popover()->isVisible());
    QTest::mouseClick(&window.first, Qt::LeftButton);
    QVERIFY(!window.first.isShowing());
}

void TestInfoButton::takesClicksInItsWholeSquare()
{
    Window window;
    for (const QPoint &corner : {QPoint(0, 0), QPoint(19, 0), QPoint(0, 19), QPoint(19, 19)}) {
        QTest::mouseClick(&window.first, Qt::LeftButton, {}, corner);
        QVERIFY(window.first.isShowing());
        QTest::mouseClick(&window.first, Qt::LeftButton, {}, corner);
        QVERIFY(!window.first.isShowing());
    }
}

void TestInfoButton::togglesByKeys_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("space") << Qt::Key_Space;
    QTest::newRow("return") << Qt::Key_Return;
    QTest::newRow("enter") << Qt::Key_Enter;
}

void TestInfoButton::togglesByKeys()
{
    QFETCH(Qt::Key, key);
    Window window;
    QTest::keyClick(&window.first, key);
    QVERIFY(window.first.isShowing());
    QTest::keyClick(&window.first, key);
    QVERIFY(!window.first.isShowing());
}

void TestInfoButton::closesOnAPressElsewhere()
{
    Window window;
    window.first.click();
    window.press({30, 700});
    QVERIFY(!window.first.isShowing());
    window.first.click();
    QTest::mouseClick(&window.second, Qt::LeftButton);
    QVERIFY(!window.first.isShowing());
    QVERIFY(window.second.isShowing());
}

void TestInfoButton::staysOpenOnAPressInside()
{
    Window window;
    window.first.click();
    window.press(window.first.popover()->geometry().center());
    QVERIFY(window.first.isShowing());
    // The corner of its rectangle beside the arrow is not inside.
    window.press(window.first.popover()->geometry().topLeft() + QPoint(2, 2));
    QVERIFY(!window.first.isShowing());
}

void TestInfoButton::closesOnEscape()
{
    Window window;
    window.first.click();
    QTest::keyClick(&window.widget, Qt::Key_Escape);
    QVERIFY(!window.first.isShowing());
}

void TestInfoButton::closesWhenTheWindowIsLeft()
{
    Window window;
    window.first.click();
    QEvent left(QEvent::WindowDeactivate);
    QApplication::sendEvent(&window.widget, &left);
    QVERIFY(!window.first.isShowing());
}

void TestInfoButton::closesWithTheButton()
{
    Window window;
    window.first.click();
    window.first.hide();
    QVERIFY(!window.first.isShowing());
}

void TestInfoButton::leavesOtherPopoversAlone()
{
    Window window;
    window.first.click();
    window.second.click();
    QVERIFY(window.first.isShowing() && window.second.isShowing());
    window.second.click();
    QVERIFY(window.first.isShowing());
}

void TestInfoButton::survivesItsWindow()
{
    auto window = std::make_unique<QWidget>();
    auto *button = new InfoButton({u"Title"_s, u"text"_s}, window.get());
    window->show();
    button->click();
    const QPointer<InfoPopover> popover = button->popover();
    QVERIFY(popover);
    window.reset();
    QVERIFY(!popover);
}

void TestInfoButton::growsDownwards()
{
    Window window;
    window.first.click();
    window.second.click();
    QCOMPARE(window.first.popover()->bodySize(), QSize(340, 14 + 17 + 8 + 16 + 14));
    QCOMPARE(window.second.popover()->bodySize(), QSize(340, 14 + 17 + 8 + 3 * 16 + 14));
}

void TestInfoButton::fitsTheLeastWindow()
{
    Window window;
    for (const InfoTopic topic : allInfoTopics) {
        for (const HostSystem system : {HostSystem::mac, HostSystem::linuxDesktop}) {
            const InfoText info = infoText(topic, system);
            // Each at the height of its card's row in the least window.
            const bool top = topic == InfoTopic::memory || topic == InfoTopic::power;
            const bool bottom = topic == InfoTopic::workloads || topic == InfoTopic::processes;
            InfoButton button(info, &window.widget);
            button.move(870, 15 + (top ? 64 : bottom ? 504 : 314));
            button.show();
            button.click();
            QVERIFY2(window.widget.rect().contains(button.popover()->geometry()),
                     qPrintable(info.title));
        }
    }
}

void TestInfoButton::rendersMarks()
{
    Window window;
    window.first.click();
    const std::vector<AccessibleText> texts = window.first.popover()->accessibleTexts();
    QCOMPARE(texts.size(), std::size_t(2));
    QCOMPARE(texts[0].value, u"First"_s);
    QCOMPARE(texts[1].value, u"Bold text"_s);
}

void TestInfoButton::paintsBodyAndArrow_data()
{
    QTest::addColumn<double>("scale");
    QTest::newRow("scale 1") << 1.0;
    QTest::newRow("scale 2") << 2.0;
}

void TestInfoButton::paintsBodyAndArrow()
{
    QFETCH(double, scale);
    Window window;
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

/// On what lies around its body, more below it than above.
void TestInfoButton::castsAShadow()
{
    Window window;
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

void TestInfoButton::keepsCodeOnItsGround()
{
    QFETCH(double, scale);
    Window window;
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

void TestInfoButton::answersThePointer()
{
    Window window;
    window.widget.setStyleSheet(u"background: black"_s);
    const QRect place = window.first.geometry();
    const QImage alone = onScreen(window.widget).copy(place);
    QEnterEvent enter(QPointF(10, 10), QPointF(10, 10), QPointF(10, 10));
    QApplication::sendEvent(&window.first, &enter);
    QVERIFY(onScreen(window.widget).copy(place) != alone);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&window.first, &leave);
    QCOMPARE(onScreen(window.widget).copy(place), alone);
}

void TestInfoButton::showsItsFocus()
{
    Window window;
    window.first.setFocus();
    QVERIFY(QTest::qWaitForWindowActive(&window.widget));
    const auto edge = [](InfoButton &button) { return pixelAt(rendered(button, 1), 10, 1); };
    QVERIFY(isClose(edge(window.first), Theme::focusRing, 4));
    QCOMPARE(edge(window.second).alpha(), 0);
}

void TestInfoButton::canBeRead()
{
    Window window;
    QAccessibleInterface *button = QAccessible::queryAccessibleInterface(&window.first);
    QCOMPARE(button->role(), QAccessible::Button);
    QCOMPARE(button->text(QAccessible::Name), u"First"_s);
    QCOMPARE(button->text(QAccessible::Description), u"Bold text"_s);
    QCOMPARE(window.first.toolTip(), u"First"_s);

    window.first.click();
    QAccessibleInterface *popover = QAccessible::queryAccessibleInterface(window.first.popover());
    QCOMPARE(popover->text(QAccessible::Name), u"First"_s);
    QCOMPARE(popover->childCount(), 2);
    QCOMPARE(popover->child(1)->text(QAccessible::Name), u"Bold text"_s);
}

QTEST_MAIN(TestInfoButton)
#include "tst_InfoButton.moc"
