#include "processes/LiveProcess.h"
#include "support/ProgramRun.h"
#include "support/ProgramSession.h"
#include "support/Waiting.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTest>

#include <optional>

#include <csignal>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

/// Reads of files since the process began; 0 once it has ended.
qint64 readsOf(qint64 process)
{
    QFile file(u"/proc/%1/task/%1/io"_s.arg(process));
    if (!file.open(QFile::ReadOnly))
        return 0;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith("syscr: "))
            return line.mid(7).toLongLong();
    }
    return 0;
}

} // namespace

/// The real program while each call for some files never returns. The clock is quick: a second
/// takes 50 ms.
class TestHangingFiles : public QObject {
    Q_OBJECT

private slots:
    void init();
    void samplesAndEnds_data();
    void samplesAndEnds();

private:
    std::optional<ProgramSession> m_session;
};

void TestHangingFiles::init()
{
    if (*CORVANE_SANITIZERS)
        QSKIP("Sanitizers make such calls themselves.");
    m_session.emplace();
}

void TestHangingFiles::samplesAndEnds_data()
{
    QTest::addColumn<QString>("files");
    QTest::addColumn<Phase>("phase");
    QTest::newRow("the history from the start on") << u"*history.jsonl"_s << Phase::start;
    QTest::newRow("the history later") << u"*history.jsonl"_s << Phase::later;
    QTest::newRow("the preferences from the start on") << u"*Corvane.conf"_s << Phase::start;
    QTest::newRow("the login item from the start on") << u"*Corvane.desktop"_s << Phase::start;
    QTest::newRow("the pressure from the start on") << u"*pressure/memory"_s << Phase::start;
    QTest::newRow("the pressure later") << u"*pressure/memory"_s << Phase::later;
    QTest::newRow("the ZFS cache from the start on") << u"*arcstats"_s << Phase::start;
    QTest::newRow("the command lines of processes") << u"*cmdline"_s << Phase::dashboard;
    QTest::newRow("the memory of processes") << u"*statm"_s << Phase::dashboard;
    QTest::newRow("the names of processes") << u"*comm"_s << Phase::dashboard;
    QTest::newRow("the times of processes") << u"*[0-9]/stat"_s << Phase::dashboard;
}

/// The main thread reads the memory once a sample, so it goes on when it reads.
void TestHangingFiles::samplesAndEnds()
{
    QFETCH(const QString, files);
    QFETCH(const Phase, phase);
    const QString report = m_session->path(u"report"_s);
    LiveProcess runner(u"llama-server"_s, {}, 208); // Its arguments are of interest.
    QVERIFY(runner.isReady());
    QVERIFY(m_session->makeFolder(u"config/Corvane"_s));
    QFile preferences(m_session->path(u"config/Corvane/Corvane.conf"_s));
    QVERIFY(preferences.open(QFile::WriteOnly) && preferences.write("[General]\n") > 0);
    preferences.close();
    QVERIFY(m_session->makeFolder(u"config/autostart"_s));
    QFile loginItem(m_session->path(u"config/autostart/" CORVANE_IDENTIFIER ".desktop"_s));
    QVERIFY(loginItem.open(QFile::WriteOnly) && loginItem.write("[Desktop Entry]\n") > 0);
    loginItem.close();
    QVERIFY(m_session->startBus("gnome-shell"));
    QProcessEnvironment &environment = m_session->environment;
    environment.insert(u"LD_PRELOAD"_s,
                       QStringLiteral(QUICK_CLOCK) + u':' + QStringLiteral(HANGING_FILE));
    environment.insert(u"HANGING_FILE"_s, files);
    environment.insert(u"HANGING_REPORT"_s, report);
    if (phase != Phase::start)
        environment.insert(u"HANGING_LATER"_s, u"1"_s);
    ProgramRun corvane(environment);
    TRY_COMPARE(m_session->tray->items().size(), 1);
    if (phase != Phase::start)
        corvane.send(SIGUSR2);
    if (phase == Phase::dashboard)
        m_session->openDashboard();
    TRY_VERIFY(QFile::exists(report));
    const qint64 before = readsOf(corvane.id());
    TRY_VERIFY(readsOf(corvane.id()) > before + 50);

    QElapsedTimer elapsed;
    elapsed.start();
    corvane.send(SIGTERM);
    QCOMPARE(corvane.exitStatus(), 0);
    QVERIFY2(elapsed.elapsed() < 8'000, qPrintable(QString::number(elapsed.elapsed())));
}

QTEST_GUILESS_MAIN(TestHangingFiles)
#include "tst_HangingFiles.moc"
