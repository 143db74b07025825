#include "controls/PanelButton.h"
#include "support/Rendering.h"

#include <QEnterEvent>
#include <QSignalSpy>
#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

class TestPanelButton : public QObject {
    Q_OBJECT

private slots:
    void isClickedByKeyAndPointer_data();
    void isClickedByKeyAndPointer();
    void hasRoomForIconAndText();
    void showsItsFocus();
    void changesUnderThePointer();
    void isFaintWhenDisabled();
};

void TestPanelButton::isClickedByKeyAndPointer_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("return") << int(Qt::Key_Return);
    QTest::newRow("enter") << int(Qt::Key_Enter);
    QTest::newRow("space") << int(Qt::Key_Space);
    QTest::newRow("the pointer") << 0;
}

void TestPanelButton::isClickedByKeyAndPointer()
{
    QFETCH(int, key);
    PanelButton button(u"Quit"_s, u"power"_s);
    QSignalSpy clicked(&button, &PanelButton::clicked);
    if (key)
        QTest::keyClick(&button, Qt::Key(key));
    else
        QTest::mouseClick(&button, Qt::LeftButton);
    QCOMPARE(clicked.count(), 1);

    QTest::keyClick(&button, Qt::Key_A);
    QCOMPARE(clicked.count(), 1);
}

void TestPanelButton::hasRoomForIconAndText()
{
    const PanelButton plain(u"Quit"_s);
    const PanelButton withIcon(u"Quit"_s, u"power"_s);
    QCOMPARE(plain.sizeHint().height(), 28);
    QCOMPARE(withIcon.sizeHint().width() - plain.sizeHint().width(), 20);
    QCOMPARE(withIcon.accessibleName(), u"Quit"_s);
}

void TestPanelButton::showsItsFocus()
{
    QWidget window;
    PanelButton button(u"Quit"_s, {}, &window);
    button.resize(80, 28);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    window.activateWindow();
    window.setFocus();
    const QColor without = button.grab().toImage().pixelColor(40, 1);
    button.setFocus(Qt::TabFocusReason);
    QVERIFY(QTest::qWaitFor([&button] { return button.hasFocus(); }));
    const QColor with = button.grab().toImage().pixelColor(40, 1);
    QVERIFY(with.blue() > without.blue() + 40 || with.red() < without.red() - 40);
}

void TestPanelButton::changesUnderThePointer()
{
    QWidget window;
    window.setStyleSheet(u"background: black"_s);
    PanelButton button(u"Quit"_s, {}, &window);
    button.resize(80, 28);
    window.show();
    const auto fill = [&window] { return onScreen(window).pixelColor(6, 14).lightness(); };
    const int alone = fill();
    QEnterEvent enter(QPointF(40, 14), QPointF(40, 14), QPointF(40, 14));
    QCoreApplication::sendEvent(&button, &enter);
    QVERIFY(fill() > alone);
    QTest::mousePress(&button, Qt::LeftButton);
    QVERIFY(fill() < alone);
    QTest::mouseRelease(&button, Qt::LeftButton);
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(&button, &leave);
    QCOMPARE(fill(), alone);
}

void TestPanelButton::isFaintWhenDisabled()
{
    PanelButton button(u"MMMM"_s);
    button.resize(80, 28);
    const auto brightest = [&button] {
        int most = 0;
        const QImage picture = button.grab().toImage().convertToFormat(QImage::Format_ARGB32);
        QImage onBlack(picture.size(), QImage::Format_RGB32);
        for (int y = 4; y < 24; ++y) {
            for (int x = 4; x < 76; ++x)
                most = qMax(most, qAlpha(picture.pixel(x, y)));
        }
        return most;
    };
    const int enabled = brightest();
    button.setEnabled(false);
    QVERIFY(enabled > 0);
    QVERIFY(brightest() <= enabled);
}

QTEST_MAIN(TestPanelButton)
#include "tst_PanelButton.moc"
