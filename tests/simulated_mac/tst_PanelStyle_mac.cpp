#include "simulated_mac/recorded/Desktop.h"
#include "simulated_mac/recorded/Messages.h"
#include "windows/PanelStyle_mac.h"

#include <QTest>

using namespace corvane;
using namespace corvane::simulated;

using Messages = std::vector<std::string>;

class TestPanelStyleOnMac : public QObject {
    Q_OBJECT

private slots:
    void init();
    void isAPanelOfTheMenuBar();
    void staysAPanelWhereTheWindowServerCannotBeTold();
    void takesTheKeyFocus_data();
    void takesTheKeyFocus();
};

void TestPanelStyleOnMac::init()
{
    resetDesktop();
}

void TestPanelStyleOnMac::isAPanelOfTheMenuBar()
{
    constexpr unsigned long byQt = 1 << 15;
    void *panel = addWindow({.styleMask = byQt});
    stylePanel(reinterpret_cast<NativeWindow>(panel));
    constexpr int nonactivating = 1 << 7;
    constexpr int popUpMenuLevel = 101;
    constexpr int moveToActiveSpace = 1 << 1;
    constexpr int transient = 1 << 3;
    constexpr int fullScreenAuxiliary = 1 << 8;
    QVERIFY((takeMessages()
             == Messages{"NSWindow setStyleMask:" + std::to_string(byQt | nonactivating),
                         "NSWindow _setPreventsActivation:YES",
                         "NSWindow setLevel:" + std::to_string(popUpMenuLevel),
                         "NSWindow setCollectionBehavior:"
                             + std::to_string(moveToActiveSpace | transient | fullScreenAuxiliary),
                         "NSWindow setHasShadow:YES"}));
}

/// The message is not part of AppKit's interface.
void TestPanelStyleOnMac::staysAPanelWhereTheWindowServerCannotBeTold()
{
    desktop().preventsActivation = false;
    void *panel = addWindow({});
    stylePanel(reinterpret_cast<NativeWindow>(panel));
    constexpr unsigned long nonactivating = 1 << 7;
    QCOMPARE(stateOf(panel).styleMask, nonactivating);
    QCOMPARE(takeMessages().size(), 4U);
}

void TestPanelStyleOnMac::takesTheKeyFocus_data()
{
    QTest::addColumn<bool>("isHidden");
    QTest::addColumn<Messages>("messages");
    QTest::newRow("a visible program is not activated")
        << false << Messages{"NSWindow makeKeyAndOrderFront:nil"};
    QTest::newRow("a program that gave the focus back is hidden")
        << true
        << Messages{"NSApplication unhideWithoutActivation", "NSWindow makeKeyAndOrderFront:nil"};
}

void TestPanelStyleOnMac::takesTheKeyFocus()
{
    QFETCH(bool, isHidden);
    QFETCH(Messages, messages);
    useApplication();
    desktop().isHidden = isHidden;
    void *panel = addWindow({});
    focusPanel(reinterpret_cast<NativeWindow>(panel));
    QVERIFY(takeMessages() == messages);
    QCOMPARE(desktop().keyWindow, panel);
    QVERIFY(!desktop().isActive);
    QVERIFY(!desktop().isHidden);
}

QTEST_GUILESS_MAIN(TestPanelStyleOnMac)
#include "tst_PanelStyle_mac.moc"
