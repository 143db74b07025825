#include "support/ProgramRun.h"
#include "support/ProgramSession.h"
#include "support/SessionManager.h"
#include "support/Waiting.h"

#include <QCoreApplication>
#include <QFile>
#include <QTest>

using namespace corvane::test;
using namespace Qt::StringLiterals;

/// The real program in an X11 session that its manager ends.
class TestSessionEnd : public QObject {
    Q_OBJECT

private slots:
    void endsWithTheSession();
};

void TestSessionEnd::endsWithTheSession()
{
    SessionManager manager;
    QVERIFY(!manager.address().isEmpty());
    ProgramSession session;
    QVERIFY(session.startDisplay());
    session.environment.insert(u"SESSION_MANAGER"_s, QString::fromLocal8Bit(manager.address()));
    const ProgramRun corvane(session.environment);

    TRY_VERIFY(manager.hasClient());
    TRY_VERIFY(session.display->visibleWindows(u"Corvane"_s) == 1); // There is no tray.
    manager.announceEnd();
    TRY_VERIFY(manager.isReadyForEnd());
    QCOMPARE(manager.questions(), 0);
    QCOMPARE(manager.restartStyle(), SessionManager::restartNever);
    QVERIFY(corvane.isRunning()); // Another program may still cancel the end.

    manager.end();
    QCOMPARE(corvane.exitStatus(), 0);
    QFile history(session.historyFile());
    QVERIFY(history.open(QFile::ReadOnly));
    QVERIFY(history.readAll().endsWith("}\n"));
}

QTEST_GUILESS_MAIN(TestSessionEnd)
#include "tst_SessionEnd.moc"
