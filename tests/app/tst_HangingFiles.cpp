#include "processes/LiveProcess.h"
#include "support/OwnMounts.h"
#include "support/ProgramRun.h"
#include "support/ProgramSession.h"
#include "support/TestMounts.h"
#include "support/Waiting.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTest>

#include <optional>

#include <csignal>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

/// The file, and those from which it is made.
constexpr auto metricsFiles = "*/metrics*"_L1;

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

public:
    explicit TestHangingFiles(bool mayMount) : m_mayMount(mayMount) { }

private slots:
    void init();
    void samplesAndEnds_data();
    void samplesAndEnds();

private:
    bool writeFile(const QString &name, const QByteArray &text) const;

    const bool m_mayMount;
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
    QTest::addColumn<bool>("isMounted"); // Whether a file is mounted in its place.
    const auto row = [](const char *name, const QString &files, Phase phase,
                        bool isMounted = false) {
        QTest::newRow(name) << files << phase << isMounted;
    };
    row("the history from the start on", u"*history.jsonl"_s, Phase::start);
    row("the history later", u"*history.jsonl"_s, Phase::later);
    row("the minutes of a week from the start on", u"*minutes.jsonl"_s, Phase::start);
    row("the preferences from the start on", u"*Corvane.conf"_s, Phase::start);
    row("the metrics file", QString(metricsFiles), Phase::later);
    row("the list of users", u"/etc/passwd"_s, Phase::start);
    row("the login item from the start on", u"*Corvane.desktop"_s, Phase::start);
    row("served pressure from the start on", u"*/proc/pressure/memory"_s, Phase::start, true);
    row("served pressure later", u"*/proc/pressure/memory"_s, Phase::later, true);
    row("served memory from the start on", u"*/proc/meminfo"_s, Phase::start, true);
    row("served memory later", u"*/proc/meminfo"_s, Phase::later, true);
    row("served times of the CPUs from the start on", u"*/proc/stat"_s, Phase::start, true);
    row("served times of the CPUs later", u"*/proc/stat"_s, Phase::later, true);
    row("served names of the CPUs", u"*/proc/cpuinfo"_s, Phase::start, true);
    row("the ZFS cache from the start on", u"*arcstats"_s, Phase::start);
    row("the command lines of processes", u"*cmdline"_s, Phase::dashboard);
    row("the memory of processes", u"*statm"_s, Phase::dashboard);
    row("the names of processes", u"*comm"_s, Phase::dashboard);
    row("the times of processes", u"*[0-9]/stat"_s, Phase::dashboard);
}

bool TestHangingFiles::writeFile(const QString &name, const QByteArray &text) const
{
    QFile file(m_session->path(name));
    return file.open(QFile::WriteOnly) && file.write(text) == text.size();
}

/// The main thread reads the memory or the times of the CPUs once a sample, so it goes on when it
/// reads.
void TestHangingFiles::samplesAndEnds()
{
    QFETCH(const QString, files);
    QFETCH(const Phase, phase);
    QFETCH(const bool, isMounted);
    const QString report = m_session->path(u"report"_s);
    LiveProcess runner(u"llama-server"_s, {}, 208); // Its arguments are of interest.
    QVERIFY(runner.isReady());
    QVERIFY(m_session->makeFolder(u"config/Corvane"_s));
    QVERIFY(m_session->makeFolder(u"metrics"_s));
    QByteArray preferences = "[General]\n";
    if (files == metricsFiles)
        preferences += "writeMetrics=true\nmetricsFolder="
            + QFile::encodeName(m_session->path(u"metrics"_s)) + '\n';
    QVERIFY(writeFile(u"config/Corvane/Corvane.conf"_s, preferences));
    QVERIFY(m_session->makeFolder(u"config/autostart"_s));
    QVERIFY(writeFile(u"config/autostart/" CORVANE_IDENTIFIER ".desktop"_s, "[Desktop Entry]\n"));
    std::optional<BoundFile> mounted;
    if (isMounted) {
        const std::string file = files.mid(1).toStdString();
        QVERIFY(QFile::copy(QString::fromStdString(file), m_session->path(u"served"_s)));
        mounted.emplace(m_session->path(u"served"_s).toStdString(), file);
        if (!m_mayMount || !mounted->isMounted())
            QSKIP("This user may not mount a file");
    }
    QVERIFY(m_session->startBus("gnome-shell"));
    QProcessEnvironment &environment = m_session->environment;
    environment.insert(u"LD_PRELOAD"_s,
                       QStringLiteral(QUICK_CLOCK) + u':' + QStringLiteral(HANGING_FILE));
    environment.insert(u"HANGING_FILE"_s, files);
    environment.insert(u"HANGING_REPORT"_s, report);
    if (phase != Phase::start)
        environment.insert(u"HANGING_LATER"_s, u"1"_s);
    if (files == "/etc/passwd"_L1)
        environment.remove(u"HOME"_s);
    ProgramRun corvane(environment);
    TRY_COMPARE(m_session->tray->items().size(), 1);
    if (phase != Phase::start)
        corvane.send(SIGUSR2);
    if (phase == Phase::dashboard)
        m_session->openDashboard();
    TRY_VERIFY(QFile::exists(report));
    const qint64 before = readsOf(corvane.id());
    TRY_VERIFY(readsOf(corvane.id()) > before + 20);

    QElapsedTimer elapsed;
    elapsed.start();
    corvane.send(SIGTERM);
    QCOMPARE(corvane.exitStatus(), 0);
    QVERIFY2(elapsed.elapsed() < 8'000, qPrintable(QString::number(elapsed.elapsed())));
}

int main(int argc, char **argv)
{
    const bool mayMount = unshareMounts(); // Before the first thread.
    QCoreApplication application(argc, argv);
    TestHangingFiles test(mayMount);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_HangingFiles.moc"
