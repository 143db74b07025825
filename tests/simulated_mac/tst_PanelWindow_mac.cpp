#include "windows/PanelWindow.h"

#include "simulated_mac/recorded/QtPanel.h"

#include <QTest>
#include <QWidget>

using namespace corvane;
using namespace corvane::simulated;

class TestPanelWindowOnMac : public QObject {
    Q_OBJECT

private slots:
    void takesKeysAndClosesOnAClickElsewhereEachTime();
    void hasTheShadowOfAMac();
    void staysVisibleWhileAnotherProgramIsActive();
};

void TestPanelWindowOnMac::takesKeysAndClosesOnAClickElsewhereEachTime()
{
    QtPanel panel(panelWindowFlags());
    for (int opening = 0; opening < 3; ++opening) {
        panel.open();
        QVERIFY(panel.hasKeyFocus());
        panel.clickElsewhere();
        QVERIFY(!panel.isOpen());
    }
}

void TestPanelWindowOnMac::hasTheShadowOfAMac()
{
    QVERIFY(!(panelWindowFlags() & Qt::NoDropShadowWindowHint));
    QVERIFY(panelWindowFlags() & Qt::FramelessWindowHint);
}

/// Qt hides tool windows of an inactive program otherwise, and this one always is.
void TestPanelWindowOnMac::staysVisibleWhileAnotherProgramIsActive()
{
    QWidget panel(nullptr, panelWindowFlags());
    showPanelWindow(panel);
    QVERIFY(panel.isVisible());
    QVERIFY(panel.testAttribute(Qt::WA_MacAlwaysShowToolWindow));
}

QTEST_MAIN(TestPanelWindowOnMac)
#include "tst_PanelWindow_mac.moc"
