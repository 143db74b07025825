#include "simulated_mac/recorded/Desktop.h"
#include "simulated_mac/recorded/Messages.h"
#include "windows/WindowLifecycleCoordinator.h"
#include "windows/WindowStyle.h"

#include <QColor>
#include <QTest>
#include <QWidget>

using namespace corvane;
using namespace corvane::simulated;

using Messages = std::vector<std::string>;

namespace {

constexpr unsigned long titled = 1 << 0;

NativeWindow native(void *window)
{
    return reinterpret_cast<NativeWindow>(window);
}

} // namespace

class TestWindowPlatformOnMac : public QObject {
    Q_OBJECT

private slots:
    void init();
    void attachesAWindow();
    void isAnAccessoryAgainWhenTheWindowCloses();
    void givesTheFocusBack_data();
    void givesTheFocusBack();
    void hidesTheTitle();
    void hasNoWindowWithoutTheScreen();
};

void TestWindowPlatformOnMac::init()
{
    resetDesktop();
    useApplication();
}

void TestWindowPlatformOnMac::attachesAWindow()
{
    constexpr unsigned long fullScreenPrimary = 1 << 7;
    constexpr unsigned long fullScreenAuxiliary = 1 << 8;
    void *window = addWindow({.collectionBehavior = fullScreenAuxiliary | 1});
    WindowLifecycleCoordinator coordinator;
    coordinator.attach(native(window));
    QVERIFY((takeMessages()
             == Messages{"NSWindow setCollectionBehavior:" + std::to_string(fullScreenPrimary | 1),
                         "NSWindow standardWindowButton:2", "NSButton setEnabled:YES",
                         "NSApplication setActivationPolicy:0",
                         "NSApplication activateIgnoringOtherApps:YES",
                         "NSWindow makeKeyAndOrderFront:nil",
                         "NSNotificationCenter addObserverForName:NSWindowWillCloseNotification "
                         "object:NSWindow on the main queue"}));
    QVERIFY(systemWindowPlatform().activationPolicy() == ActivationPolicy::regular);
}

void TestWindowPlatformOnMac::isAnAccessoryAgainWhenTheWindowCloses()
{
    void *window = addWindow({});
    void *other = addWindow({});
    WindowLifecycleCoordinator coordinator;
    for (int cycle = 0; cycle < 3; ++cycle) {
        coordinator.attach(native(window));
        takeMessages();
        post("NSWindowWillCloseNotification", other);
        QVERIFY(takeMessages().empty());
        post("NSWindowWillCloseNotification", window);
        QVERIFY((takeMessages()
                 == Messages{"NSApplication setActivationPolicy:1",
                             "NSNotificationCenter removeObserver:NSObject"}));
        QCOMPARE(coordinator.observerCount(), 0U);
    }
}

void TestWindowPlatformOnMac::givesTheFocusBack_data()
{
    QTest::addColumn<bool>("isActive");
    QTest::addColumn<unsigned long>("styleMask");
    QTest::addColumn<bool>("isVisible");
    QTest::addColumn<bool>("isMiniaturized");
    QTest::addColumn<Messages>("messages");
    const Messages hides{"NSApplication hide:nil"};
    QTest::newRow("the last window is closed") << true << titled << false << false << hides;
    QTest::newRow("the panel and the bar's window do not count")
        << true << 0UL << true << false << hides;
    QTest::newRow("another window is open") << true << titled << true << false << Messages{};
    QTest::newRow("another window is minimized") << true << titled << false << true << Messages{};
    QTest::newRow("another program has the focus already")
        << false << titled << false << false << Messages{};
}

void TestWindowPlatformOnMac::givesTheFocusBack()
{
    QFETCH(bool, isActive);
    QFETCH(unsigned long, styleMask);
    QFETCH(bool, isVisible);
    QFETCH(bool, isMiniaturized);
    QFETCH(Messages, messages);
    desktop().isActive = isActive;
    addWindow({.styleMask = styleMask, .isVisible = isVisible, .isMiniaturized = isMiniaturized});
    systemWindowPlatform().giveFocusBack();
    QVERIFY(takeMessages() == messages);
}

void TestWindowPlatformOnMac::hidesTheTitle()
{
    hideTitleBar(native(addWindow({})), QColor::fromRgbF(0.25F, 0.5F, 0.75F));
    const Messages messages = takeMessages();
    QCOMPARE(messages.size(), 4U);
    QCOMPARE(messages[0], std::string("NSWindow setTitleVisibility:1"));
    QCOMPARE(messages[1], std::string("NSWindow setTitlebarAppearsTransparent:YES"));
    QCOMPARE(messages[2], std::string("NSWindow setAppearance:DarkAqua"));
    QVERIFY(messages[3].starts_with("NSWindow setBackgroundColor:0.25"));
}

/// Without Qt's plugin for a Mac the number of a window is no address of one.
void TestWindowPlatformOnMac::hasNoWindowWithoutTheScreen()
{
    QWidget window;
    window.show();
    QCOMPARE(systemWindowPlatform().hostingWindow(window), static_cast<NativeWindow>(nullptr));
}

QTEST_MAIN(TestWindowPlatformOnMac)
#include "tst_WindowPlatform_mac.moc"
