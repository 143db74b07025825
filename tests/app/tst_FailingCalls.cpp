#include "support/NumberArgument.h"
#include "support/ProgramRun.h"
#include "support/ProgramSession.h"
#include "support/Waiting.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QFile>
#include <QTest>

#include <optional>
#include <utility>

#include <csignal>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

/// Bytes that the process has read from files since it began; 0 once it has ended.
qint64 bytesRead(qint64 process)
{
    QFile file(u"/proc/%1/io"_s.arg(process));
    if (!file.open(QFile::ReadOnly))
        return 0;
    return file.readAll().split('\n').first().split(' ').last().toLongLong();
}

} // namespace

/// The real program while one call of the system fails. The clock is quick: a second takes 50 ms.
class TestFailingCalls : public QObject {
    Q_OBJECT

public:
    /// With each number up to `most`; 0: a few.
    explicit TestFailingCalls(int most) : m_isWhole(most > 0)
    {
        for (int number = 1; number <= most; ++number)
            m_numbers.append(number);
        if (!m_isWhole)
            m_numbers = {1, 3, 13};
    }

private slots:
    void init();
    void goesOnOrEndsInOneLine_data();
    void goesOnOrEndsInOneLine();

private:
    bool hasStarted(const QString &call, Phase phase) const;
    bool isSampling(const ProgramRun &corvane) const;
    void survives(const QString &call, int number, Phase phase);
    bool hasFailed() const { return QFile::exists(m_session->path(u"failed"_s)); }

    const bool m_isWhole;
    QList<int> m_numbers;
    std::optional<ProgramSession> m_session;
};

void TestFailingCalls::init()
{
    if (*CORVANE_SANITIZERS)
        QSKIP("Sanitizers make such calls themselves.");
}

void TestFailingCalls::goesOnOrEndsInOneLine_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<Phase>("phase");
    QTest::addColumn<bool>("isMade"); // Whether the program makes such a call for sure.
    for (const QString &call :
         {u"clone"_s, u"socket"_s, u"pipe"_s, u"eventfd"_s, u"mmap"_s, u"open"_s, u"connect"_s}) {
        const auto row = [&call](const char *when, Phase phase, bool isMade) {
            QTest::addRow("%s %s", qPrintable(call), when) << call << phase << isMade;
        };
        const bool isOfWindows = call == "clone"_L1 || call == "mmap"_L1 || call == "open"_L1;
        row("from the start on", Phase::start, true);
        row("from the opening of the dashboard on", Phase::dashboard, isOfWindows);
        row("later", Phase::later, call == "open"_L1);
    }
}

/// Qt starts the thread of its buses only once: without it there is no label, but a dashboard.
bool TestFailingCalls::hasStarted(const QString &call, Phase phase) const
{
    if (call == "clone"_L1 && phase == Phase::start)
        return QFile::exists(m_session->socketPath());
    return m_session->tray->items().size() == 1;
}

/// Whether it ends or reads what several samples need.
bool TestFailingCalls::isSampling(const ProgramRun &corvane) const
{
    const qint64 before = bytesRead(corvane.id());
    return QTest::qWaitFor(
        [&] { return !corvane.isRunning() || bytesRead(corvane.id()) > before + 50'000; },
        patience);
}

void TestFailingCalls::goesOnOrEndsInOneLine()
{
    QFETCH(const QString, call);
    QFETCH(const Phase, phase);
    QFETCH(const bool, isMade);
    constexpr int mostNotReached = 3; // Their number differs a little from run to run.
    int notReached = 0;
    for (const int number : std::as_const(m_numbers)) {
        if (notReached == mostNotReached || (!m_isWhole && phase != Phase::start && number > 1))
            return;
        m_session.emplace();
        survives(call, number, phase);
        if (QTest::currentTestFailed())
            QFAIL(qPrintable(u"at call %1"_s.arg(number)));
        if (isMade && number == 1)
            QVERIFY2(hasFailed(), "the program makes no such call");
        notReached = hasFailed() ? 0 : notReached + 1;
    }
}

void TestFailingCalls::survives(const QString &call, int number, Phase phase)
{
    QVERIFY(m_session->startBus("gnome-shell"));
    QProcessEnvironment &environment = m_session->environment;
    environment.insert(u"LD_PRELOAD"_s,
                       QStringLiteral(QUICK_CLOCK) + u':' + QStringLiteral(FAILING_CALL));
    environment.insert(u"FAILING_CALL"_s, call);
    environment.insert(u"FAILING_CALL_N"_s, QString::number(number));
    environment.insert(u"FAILING_CALL_FILE"_s, m_session->path(u"failed"_s));
    if (phase != Phase::start)
        environment.insert(u"FAILING_CALL_LATER"_s, u"1"_s);
    ProgramRun corvane(environment);
    TRY_VERIFY(!corvane.isRunning() || hasStarted(call, phase));
    if (phase != Phase::start)
        corvane.send(SIGUSR2);
    if (phase == Phase::dashboard)
        m_session->openDashboard();
    QVERIFY2(isSampling(corvane), "it hangs");
    const bool goesOn = corvane.isRunning();
    if (goesOn)
        corvane.send(SIGTERM);
    const int status = corvane.exitStatus();
    QByteArray errors = corvane.errors();
    if (goesOn) {
        QVERIFY2(status == 0, errors.constData());
        return;
    }
    QVERIFY2(status == 1 && phase == Phase::start, errors.constData());
    QCOMPARE(errors.count('\n'), 1);
    QVERIFY2(errors.startsWith("Corvane cannot start"), errors.constData());
}

int main(int argc, char **argv)
{
    const int most = takeNumber("--all", 0, argc, argv);
    QCoreApplication application(argc, argv);
    TestFailingCalls test(most);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_FailingCalls.moc"
