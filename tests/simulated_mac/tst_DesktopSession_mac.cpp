#include "app/CorvaneApp.h"

#include <QCoreApplication>
#include <QTest>
#include <QTimer>

#include <cstdlib>

using namespace corvane;

namespace {

/// True when Qt would activate the program at its launch: its plugin for a Mac looks at this
/// variable while the application object is created.
bool tookFocus = false;

void launch()
{
    tookFocus = qEnvironmentVariableIsEmpty("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM");
    QTimer::singleShot(0, QCoreApplication::instance(), &QCoreApplication::quit);
}
Q_COREAPP_STARTUP_FUNCTION(launch)

char name[] = "corvane";
char *arguments[] = {name, nullptr};

} // namespace

class TestDesktopSessionOnMac : public QObject {
    Q_OBJECT

private slots:
    void takesNoFocusAtLaunch();
};

void TestDesktopSessionOnMac::takesNoFocusAtLaunch()
{
    {
        int argc = 1;
        const QCoreApplication application(argc, arguments);
    }
    QVERIFY(tookFocus);
    QCOMPARE(run(1, arguments), EXIT_SUCCESS);
    QVERIFY(!tookFocus);
}

QTEST_APPLESS_MAIN(TestDesktopSessionOnMac)
#include "tst_DesktopSession_mac.moc"
