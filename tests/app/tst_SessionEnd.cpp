#include "support/SessionManager.h"
#include "support/VirtualDisplay.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

constexpr int ample = 60'000; ///< Milliseconds; for a machine under load.

} // namespace

/// The real program in a session of X11 that its manager ends.
class TestSessionEnd : public QObject {
    Q_OBJECT

private slots:
    void endsWithTheSession();
};

#define TRY_VERIFY(condition) QTRY_VERIFY_WITH_TIMEOUT(condition, ample)

void TestSessionEnd::endsWithTheSession()
{
    SessionManager manager;
    QVERIFY(!manager.address().isEmpty());
    VirtualDisplay display;
    QVERIFY(display.start());
    const QTemporaryDir home(u"/tmp/corvane-XXXXXX"_s);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString &name : {u"WAYLAND_DISPLAY"_s, u"DBUS_SESSION_BUS_ADDRESS"_s})
        environment.remove(name);
    for (const QString &folder : {u"HOME"_s, u"XDG_DATA_HOME"_s, u"XDG_CONFIG_HOME"_s,
                                  u"XDG_CACHE_HOME"_s, u"XDG_RUNTIME_DIR"_s})
        environment.insert(folder, home.path());
    environment.insert(u"DISPLAY"_s, display.name());
    environment.insert(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
    environment.insert(u"SESSION_MANAGER"_s, QString::fromLocal8Bit(manager.address()));
    QProcess corvane;
    corvane.setProcessEnvironment(environment);
    corvane.start(QStringLiteral(CORVANE_PROGRAM), QStringList());

    TRY_VERIFY(manager.hasClient());
    TRY_VERIFY(display.visibleWindows(u"Corvane"_s) == 1); // There is no tray.
    manager.announceEnd();
    TRY_VERIFY(manager.isReadyForEnd());
    QCOMPARE(manager.questions(), 0);
    QCOMPARE(manager.restartStyle(), SessionManager::restartNever);
    QCOMPARE(corvane.state(), QProcess::Running); // Others may still keep the session.

    manager.end();
    TRY_VERIFY(corvane.state() == QProcess::NotRunning);
    QCOMPARE(corvane.exitStatus(), QProcess::NormalExit);
    QCOMPARE(corvane.exitCode(), 0);
    QFile history(home.filePath(u"Corvane/history.jsonl"_s));
    QVERIFY(history.open(QFile::ReadOnly));
    QVERIFY(history.readAll().endsWith("}\n"));
}

QTEST_GUILESS_MAIN(TestSessionEnd)
#include "tst_SessionEnd.moc"
