#include "windows/KeyWindow.h"

#include <QApplication>
#include <QTest>
#include <QWidget>

using namespace corvane;

class TestKeyWindow : public QObject {
    Q_OBJECT

private slots:
    void closesTheActiveWindow();
    void minimizesTheActiveWindow();
    void zoomsAndFillsTheScreenBackAndForth();
    void aWindowOfAFixedSizeKeepsIt();
    void acceptsNothingWithoutAWindow();
};

void TestKeyWindow::closesTheActiveWindow()
{
    QWidget window;
    QWidget other;
    other.show();
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    const KeyWindow key = systemKeyWindow();
    QVERIFY(key.accepts(WindowCommand::close));
    key.perform(WindowCommand::close);
    QVERIFY(!window.isVisible());
    QVERIFY(other.isVisible());
}

void TestKeyWindow::minimizesTheActiveWindow()
{
    QWidget window;
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    systemKeyWindow().perform(WindowCommand::minimize);
    QVERIFY(window.isMinimized());
}

void TestKeyWindow::zoomsAndFillsTheScreenBackAndForth()
{
    QWidget window;
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    const KeyWindow key = systemKeyWindow();
    key.perform(WindowCommand::zoom);
    QVERIFY(window.isMaximized());
    key.perform(WindowCommand::zoom);
    QVERIFY(!window.isMaximized());
    QVERIFY(!key.isFullScreen());
    key.perform(WindowCommand::fullScreen);
    QVERIFY(key.isFullScreen());
    key.perform(WindowCommand::fullScreen);
    QVERIFY(!key.isFullScreen());
}

void TestKeyWindow::aWindowOfAFixedSizeKeepsIt()
{
    QWidget window;
    window.setFixedSize(520, 360);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    const KeyWindow key = systemKeyWindow();
    QVERIFY(key.accepts(WindowCommand::minimize));
    QVERIFY(!key.accepts(WindowCommand::zoom));
    QVERIFY(!key.accepts(WindowCommand::fullScreen));
}

void TestKeyWindow::acceptsNothingWithoutAWindow()
{
    QTRY_VERIFY(!QApplication::activeWindow());
    const KeyWindow key = systemKeyWindow();
    for (const auto command : {WindowCommand::close, WindowCommand::minimize, WindowCommand::zoom,
                               WindowCommand::fullScreen, WindowCommand::copy}) {
        QVERIFY(!key.accepts(command));
        key.perform(command);
    }
    QVERIFY(!key.isFullScreen());
    QVERIFY(key.accepts(WindowCommand::bringAllToFront));
    key.perform(WindowCommand::bringAllToFront);
}

QTEST_MAIN(TestKeyWindow)
#include "tst_KeyWindow.moc"
