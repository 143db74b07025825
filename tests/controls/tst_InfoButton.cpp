#include "controls/InfoPopover.h"
#include "controls/InfoWindow.h"
#include "support/Rendering.h"
#include "ui/TextLayout.h"
#include "ui/Theme.h"

#include <QAccessible>
#include <QApplication>
#include <QEnterEvent>
#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

class TestInfoButton : public QObject {
    Q_OBJECT

private slots:
    void togglesByAClickAnywhereInItsSquare();
    void togglesByKeys_data();
    void togglesByKeys();
    void closesOnAPressElsewhere();
    void closesWithTheWindowsActivation();
    void closesWithTheButton();
    void leavesOtherPopoversAlone();
    void survivesItsWindow();
    void changesUnderThePointer();
    void showsItsFocus();
    void isAccessible();
};

void TestInfoButton::togglesByAClickAnywhereInItsSquare()
{
    InfoWindow window;
    QVERIFY(!window.first.popover());
    for (const QPoint &corner : {QPoint(0, 0), QPoint(19, 0), QPoint(0, 19), QPoint(19, 19)}) {
        QTest::mouseClick(&window.first, Qt::LeftButton, {}, corner);
        QVERIFY(window.first.popover());
        QVERIFY(window.first.popover()->isVisible());
        QTest::mouseClick(&window.first, Qt::LeftButton, {}, corner);
        QVERIFY(!window.first.popover());
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
    InfoWindow window;
    QTest::keyClick(&window.first, key);
    QVERIFY(window.first.popover());
    QTest::keyClick(&window.first, key);
    QVERIFY(!window.first.popover());
}

void TestInfoButton::closesOnAPressElsewhere()
{
    InfoWindow window;
    window.first.click();
    window.press({30, 700});
    QVERIFY(!window.first.popover());
    window.first.click();
    QTest::mouseClick(&window.second, Qt::LeftButton);
    QVERIFY(!window.first.popover());
    QVERIFY(window.second.popover());
}

void TestInfoButton::closesWithTheWindowsActivation()
{
    InfoWindow window;
    window.first.click();
    QEvent left(QEvent::WindowDeactivate);
    QApplication::sendEvent(&window.widget, &left);
    QVERIFY(!window.first.popover());
}

void TestInfoButton::closesWithTheButton()
{
    InfoWindow window;
    window.first.click();
    window.first.hide();
    QVERIFY(!window.first.popover());
}

void TestInfoButton::leavesOtherPopoversAlone()
{
    InfoWindow window;
    window.first.click();
    window.second.click();
    QVERIFY(window.first.popover() && window.second.popover());
    window.second.click();
    QVERIFY(window.first.popover());
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

void TestInfoButton::changesUnderThePointer()
{
    InfoWindow window;
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
    InfoWindow window;
    window.first.setFocus();
    QVERIFY(QTest::qWaitForWindowActive(&window.widget));
    const auto edge = [](InfoButton &button) { return pixelAt(rendered(button, 1), 10, 1); };
    QVERIFY(isClose(edge(window.first), Theme::focusRing, 4));
    QCOMPARE(edge(window.second).alpha(), 0);
}

void TestInfoButton::isAccessible()
{
    InfoWindow window;
    QAccessibleInterface *button = QAccessible::queryAccessibleInterface(&window.first);
    QCOMPARE(button->role(), QAccessible::Button);
    QCOMPARE(button->text(QAccessible::Name), u"First"_s);
    QCOMPARE(button->text(QAccessible::Description), u"Bold text"_s);
    QCOMPARE(window.first.toolTip(), plainToolTip(u"First"_s));

    window.first.click();
    QAccessibleInterface *popover = QAccessible::queryAccessibleInterface(window.first.popover());
    QCOMPARE(popover->text(QAccessible::Name), u"First"_s);
    QCOMPARE(popover->childCount(), 2);
    QCOMPARE(popover->child(1)->text(QAccessible::Name), u"Bold text"_s);
}

QTEST_MAIN(TestInfoButton)
#include "tst_InfoButton.moc"
