#include "app/DesktopSession.h"

#include <QCoreApplication>
#include <QTest>

using namespace corvane;

namespace {

/// True when Qt would activate the program at its launch: its plugin for a Mac looks at this
/// variable while the application object is created.
bool tookFocus = false;

void launch()
{
    tookFocus = qEnvironmentVariableIsEmpty("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM");
}
Q_COREAPP_STARTUP_FUNCTION(launch)

void createApplication()
{
    int argc = 1;
    char name[] = "corvane";
    char *argv[] = {name, nullptr};
    const QCoreApplication application(argc, argv);
}

} // namespace

class TestDesktopSessionOnMac : public QObject {
    Q_OBJECT

private slots:
    void takesNoFocusAtLaunch();
};

void TestDesktopSessionOnMac::takesNoFocusAtLaunch()
{
    createApplication();
    QVERIFY(tookFocus);
    prepareDesktopSession();
    createApplication();
    QVERIFY(!tookFocus);
}

QTEST_APPLESS_MAIN(TestDesktopSessionOnMac)
#include "tst_DesktopSession_mac.moc"
