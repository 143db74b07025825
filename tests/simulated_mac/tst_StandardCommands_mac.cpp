#include "simulated_mac/recorded/Desktop.h"
#include "simulated_mac/recorded/Messages.h"
#include "windows/StandardCommands_mac.h"

#include <QTest>

using namespace corvane;
using namespace corvane::simulated;

using Messages = std::vector<std::string>;

namespace {

constexpr unsigned long closable = 1 << 1;
constexpr unsigned long miniaturizable = 1 << 2;
constexpr unsigned long resizable = 1 << 3;
constexpr unsigned long fullScreen = 1 << 14;
constexpr unsigned long fullScreenPrimary = 1 << 7;

} // namespace

class TestStandardCommandsOnMac : public QObject {
    Q_OBJECT

private slots:
    void init();
    void areSentToTheKeyWindow_data();
    void areSentToTheKeyWindow();
    void areNotSentToAWindowWithoutThem_data();
    void areNotSentToAWindowWithoutThem();
    void nothingIsAcceptedWithoutAKeyWindow();
    void knowAWindowThatFillsTheScreen();
    void registerTheirMenus();
};

void TestStandardCommandsOnMac::init()
{
    resetDesktop();
    useApplication();
}

void TestStandardCommandsOnMac::areSentToTheKeyWindow_data()
{
    QTest::addColumn<WindowCommand>("command");
    QTest::addColumn<std::string>("selector");
    QTest::newRow("close") << WindowCommand::close << std::string("performClose:");
    QTest::newRow("minimize") << WindowCommand::minimize << std::string("performMiniaturize:");
    QTest::newRow("zoom") << WindowCommand::zoom << std::string("performZoom:");
    QTest::newRow("full screen") << WindowCommand::fullScreen << std::string("toggleFullScreen:");
    QTest::newRow("front") << WindowCommand::bringAllToFront << std::string("arrangeInFront:");
    QTest::newRow("copy") << WindowCommand::copy << std::string("copy:");
    QTest::newRow("select all") << WindowCommand::selectAll << std::string("selectAll:");
}

void TestStandardCommandsOnMac::areSentToTheKeyWindow()
{
    QFETCH(WindowCommand, command);
    QFETCH(std::string, selector);
    desktop().keyWindow = addWindow({.styleMask = closable | miniaturizable | resizable,
                                     .collectionBehavior = fullScreenPrimary,
                                     .focusIsOnText = true});
    sendStandardCommand(command);
    QVERIFY(
        (takeMessages() == Messages{"NSApplication sendAction:" + selector + " to:nil from:nil"}));
}

void TestStandardCommandsOnMac::areNotSentToAWindowWithoutThem_data()
{
    QTest::addColumn<WindowCommand>("command");
    QTest::newRow("without a close button") << WindowCommand::close;
    QTest::newRow("that cannot be minimized") << WindowCommand::minimize;
    QTest::newRow("of a fixed size") << WindowCommand::zoom;
    QTest::newRow("that may not fill the screen") << WindowCommand::fullScreen;
    QTest::newRow("without a text to copy") << WindowCommand::copy;
    QTest::newRow("without a text to select") << WindowCommand::selectAll;
}

void TestStandardCommandsOnMac::areNotSentToAWindowWithoutThem()
{
    QFETCH(WindowCommand, command);
    desktop().keyWindow = addWindow({});
    QVERIFY(!acceptsStandardCommand(command));
    sendStandardCommand(command);
    QVERIFY(takeMessages().empty());
}

void TestStandardCommandsOnMac::nothingIsAcceptedWithoutAKeyWindow()
{
    for (const auto command : {WindowCommand::close, WindowCommand::minimize, WindowCommand::zoom,
                               WindowCommand::fullScreen, WindowCommand::copy})
        QVERIFY(!acceptsStandardCommand(command));
    QVERIFY(acceptsStandardCommand(WindowCommand::bringAllToFront));
    QVERIFY(!keyWindowIsFullScreen());
}

void TestStandardCommandsOnMac::knowAWindowThatFillsTheScreen()
{
    desktop().keyWindow = addWindow({.styleMask = closable | fullScreen});
    QVERIFY(keyWindowIsFullScreen());
    stateOf(desktop().keyWindow).styleMask = closable;
    QVERIFY(!keyWindowIsFullScreen());
}

/// The system must not add its own "Enter Full Screen" to a menu that has one.
void TestStandardCommandsOnMac::registerTheirMenus()
{
    registerSystemMenus(makeMenu(), nullptr);
    QVERIFY((takeMessages()
             == Messages{"NSUserDefaults registerDefaults:{NSFullScreenMenuItemEverywhere: 0}",
                         "NSApplication setWindowsMenu:NSMenu", "NSApplication setHelpMenu:nil"}));
}

QTEST_GUILESS_MAIN(TestStandardCommandsOnMac)
#include "tst_StandardCommands_mac.moc"
