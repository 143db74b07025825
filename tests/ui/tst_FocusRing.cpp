#include "support/Rendering.h"
#include "ui/FocusRing.h"
#include "ui/Theme.h"

#include <QAccessible>
#include <QTest>

using namespace corvane;
using namespace corvane::test;

namespace {

/// A widget at 40, 30 of 100 × 50 points with a ring of 3 points around it, in a window.
struct RingedWidget {
    RingedWidget()
    {
        window.resize(200, 120);
        widget->setGeometry(40, 30, 100, 50);
        widget->setFocusPolicy(Qt::TabFocus);
        addFocusRing(*widget, {3, 3, 3, 3}, 4);
        window.show();
    }

    QWidget window;
    QWidget *widget = new QWidget(&window);
};

} // namespace

class TestFocusRing : public QObject {
    Q_OBJECT

private slots:
    void liesAroundTheFocusedWidget();
    void followsTheWidget();
    void goesWithTheFocus();
    void isNeitherClickedNorRead();
    void goesWithTheWidget();
    void aWindowHasNone();
};

void TestFocusRing::liesAroundTheFocusedWidget()
{
    RingedWidget ringed;
    QVERIFY(QTest::qWaitForWindowActive(&ringed.window));
    ringed.widget->setFocus();
    for (const double scale : {1.0, 2.0}) {
        const QImage image = rendered(ringed.window, scale);
        for (const double y : {27.2, 28.8, 81.2, 82.8})
            QVERIFY(isClose(pixelAt(image, 90, y), Theme::focusRing));
        for (const double y : {26.0, 29.2, 50.0, 80.8, 83.0})
            QCOMPARE(pixelAt(image, 90, y).alpha(), 0);
        QVERIFY(isClose(pixelAt(image, 37.2, 50), Theme::focusRing));
        QVERIFY(isClose(pixelAt(image, 142.8, 50), Theme::focusRing));
    }
}

void TestFocusRing::followsTheWidget()
{
    RingedWidget ringed;
    QVERIFY(QTest::qWaitForWindowActive(&ringed.window));
    ringed.widget->setFocus();
    ringed.widget->setGeometry(10, 10, 50, 20);
    QVERIFY(isClose(pixelAt(rendered(ringed.window, 1), 30, 8), Theme::focusRing));
    QCOMPARE(stalePixels(ringed.window), QRect());
}

void TestFocusRing::goesWithTheFocus()
{
    RingedWidget ringed;
    QVERIFY(QTest::qWaitForWindowActive(&ringed.window));
    ringed.widget->setFocus();
    QCOMPARE(stalePixelsAfter([&] { ringed.widget->clearFocus(); }, ringed.window), QRect());
    QCOMPARE(pixelAt(rendered(ringed.window, 1), 90, 28).alpha(), 0);
}

void TestFocusRing::isNeitherClickedNorRead()
{
    RingedWidget ringed;
    QVERIFY(QTest::qWaitForWindowActive(&ringed.window));
    ringed.widget->setFocus();
    QCOMPARE(ringed.window.childAt(90, 50), ringed.widget);
    QCOMPARE(ringed.window.childAt(90, 28), nullptr);
    QCOMPARE(QAccessible::queryAccessibleInterface(&ringed.window)->childCount(), 1);
}

void TestFocusRing::goesWithTheWidget()
{
    RingedWidget ringed;
    QVERIFY(QTest::qWaitForWindowActive(&ringed.window));
    ringed.widget->setFocus();
    delete ringed.widget;
    QTRY_VERIFY(ringed.window.findChildren<QWidget *>().isEmpty());
}

void TestFocusRing::aWindowHasNone()
{
    QWidget window;
    window.resize(50, 50);
    addFocusRing(window, {3, 3, 3, 3}, 4);
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    window.setFocus();
    QCOMPARE(pixelAt(rendered(window, 1), 25, 1).alpha(), 0);
}

QTEST_MAIN(TestFocusRing)
#include "tst_FocusRing.moc"
