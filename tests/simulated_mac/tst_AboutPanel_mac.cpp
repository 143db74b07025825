#include "app/AboutPanel.h"
#include "simulated_mac/recorded/Desktop.h"
#include "simulated_mac/recorded/Messages.h"

#include <QTest>

using namespace corvane;
using namespace corvane::simulated;

class TestAboutPanelOnMac : public QObject {
    Q_OBJECT

private slots:
    void init();
    void activatesTheProgramThenShowsTheSystemsPanel();
    void showsTheVersionOfTheBundle();
};

void TestAboutPanelOnMac::init()
{
    resetDesktop();
    useApplication();
    clearBundle();
}

void TestAboutPanelOnMac::activatesTheProgramThenShowsTheSystemsPanel()
{
    showAboutPanel();
    const auto messages = takeMessages();
    QCOMPARE(messages.size(), 2U);
    QCOMPARE(messages[0], std::string("NSApplication activateIgnoringOtherApps:YES"));
    const std::string &options = messages[1];
    QVERIFY(options.starts_with("NSApplication orderFrontStandardAboutPanelWithOptions:"));
    QVERIFY(options.find("ApplicationName: Corvane") != std::string::npos);
    QVERIFY(options.find("ApplicationVersion: 0.1.0") != std::string::npos);
    QVERIFY(options.find(" Version: 1}") != std::string::npos);
    QVERIFY(options.find("Copyright: ") != std::string::npos);
    QVERIFY(options.find("Credits: Apple Silicon system monitor.\n") != std::string::npos);
    QVERIFY(options.find("font: NSFont 11 0") != std::string::npos);
}

void TestAboutPanelOnMac::showsTheVersionOfTheBundle()
{
    setBundleValue("CFBundleShortVersionString", "2.5");
    setBundleValue("CFBundleVersion", "77");
    showAboutPanel();
    const std::string options = takeMessages().back();
    QVERIFY(options.find("ApplicationVersion: 2.5,") != std::string::npos);
    QVERIFY(options.find(" Version: 77}") != std::string::npos);
    clearBundle();
}

QTEST_GUILESS_MAIN(TestAboutPanelOnMac)
#include "tst_AboutPanel_mac.moc"
