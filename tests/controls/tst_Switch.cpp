#include "controls/Switch.h"
#include "support/Rendering.h"
#include "ui/Theme.h"

#include <QAccessible>
#include <QSignalSpy>
#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

constexpr QSize rowSize(480, 40);

/// A switch of a row's size, alone in a window.
struct Shown {
    Shown()
    {
        window.resize(rowSize);
        window.setFocusPolicy(Qt::StrongFocus);
        window.setFocus();
        row.resize(rowSize);
        window.show();
    }

    QWidget window;
    Switch row{u"Launch"_s, &window};
};

} // namespace

class TestSwitch : public QObject {
    Q_OBJECT

private slots:
    void isToggledByKeyAndPointer();
    void isACheckBoxToScreenReaders();
    void itsKnobShowsItsState_data();
    void itsKnobShowsItsState();
    void isFaintWhenDisabled();
    void showsItsFocusByKeyboardOnly();
};

void TestSwitch::isToggledByKeyAndPointer()
{
    Shown shown;
    const QSignalSpy clicked(&shown.row, &QAbstractButton::clicked);
    QTest::mouseClick(&shown.row, Qt::LeftButton, {}, {450, 20});
    QVERIFY(shown.row.isChecked());
    QTest::mouseClick(&shown.row, Qt::LeftButton, {}, {30, 20});
    QVERIFY2(!shown.row.isChecked(), "its text is part of it");
    QTest::keyClick(&shown.row, Qt::Key_Space);
    QVERIFY(shown.row.isChecked());
    QCOMPARE(clicked.count(), 3);
    shown.row.setChecked(false);
    QCOMPARE(clicked.count(), 3);
}

void TestSwitch::isACheckBoxToScreenReaders()
{
    Shown shown;
    QAccessibleInterface *seen = QAccessible::queryAccessibleInterface(&shown.row);
    QCOMPARE(seen->text(QAccessible::Name), u"Launch"_s);
    QCOMPARE(seen->role(), QAccessible::CheckBox);
    QVERIFY(!seen->state().checked);
    seen->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    QTRY_VERIFY(shown.row.isChecked());
    QVERIFY(seen->state().checked);
}

void TestSwitch::itsKnobShowsItsState_data()
{
    QTest::addColumn<bool>("on");
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("knob");
    QTest::addColumn<double>("track");
    for (const double scale : {1.0, 2.0}) {
        QTest::addRow("off at scale %g", scale) << false << scale << 442.0 << 460.0;
        QTest::addRow("on at scale %g", scale) << true << scale << 458.0 << 440.0;
    }
}

void TestSwitch::itsKnobShowsItsState()
{
    QFETCH(bool, on);
    QFETCH(double, scale);
    QFETCH(double, knob);
    QFETCH(double, track);
    Switch row(u"Launch"_s);
    row.resize(rowSize);
    row.setChecked(on);
    const QImage picture = rendered(row, scale);
    QVERIFY(isClose(pixelAt(picture, knob, 20), Qt::white));
    QVERIFY(isClose(pixelAt(picture, track, 20), on ? Theme::switchOn : Theme::switchOff));
    QCOMPARE(pixelAt(picture, 431, 20).alpha(), 0);
    QCOMPARE(pixelAt(picture, 468, 20).alpha(), 0);
    QCOMPARE(pixelAt(picture, 450, 9).alpha(), 0);
    QVERIFY(pixelAt(picture, 450, 10).alpha() > 0);
}

void TestSwitch::isFaintWhenDisabled()
{
    Shown shown;
    shown.row.setEnabled(false);
    QTest::mouseClick(&shown.row, Qt::LeftButton);
    QVERIFY(!shown.row.isChecked());
    const QColor knob = pixelAt(rendered(shown.row, 1), 442, 20);
    shown.row.setEnabled(true);
    QVERIFY(knob.alpha() < pixelAt(rendered(shown.row, 1), 442, 20).alpha());
}

void TestSwitch::showsItsFocusByKeyboardOnly()
{
    Shown shown;
    QVERIFY(QTest::qWaitForWindowActive(&shown.window));
    const auto ring = [&] { return pixelAt(rendered(shown.row, 1), 450, 7).alpha(); };
    QTest::mouseClick(&shown.row, Qt::LeftButton);
    QCOMPARE(ring(), 0);
    QTest::keyClick(&shown.window, Qt::Key_Tab);
    QVERIFY(shown.row.hasFocus());
    QVERIFY(ring() > 0);
}

QTEST_MAIN(TestSwitch)
#include "tst_Switch.moc"
