#include "app/QuitSignals.h"

#include "support/DescriptorLimit.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <cerrno>
#include <csignal>
#include <optional>
#include <sys/wait.h>
#include <unistd.h>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

using Handler = void (*)(int);

Handler handlerOf(int number)
{
    struct sigaction present = {};
    sigaction(number, nullptr, &present);
    return present.sa_handler;
}

} // namespace

class TestQuitSignals : public QObject {
    Q_OBJECT

private slots:
    void init();
    void endsTheEventLoop_data();
    void endsTheEventLoop();
    void keepsASignalFromBeforeTheLoop();
    void survivesManySignals();
    void leavesIgnoredSignalsIgnored();
    void restoresTheDefaultHandlers();
    void keepsTheDefaultHandlersWithoutDescriptors();
    void endsInTimeWhileTheMainThreadHangs_data();
    void endsInTimeWhileTheMainThreadHangs();
};

/// Sets the default handlers.
void TestQuitSignals::init()
{
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        std::signal(number, SIG_DFL);
}

void TestQuitSignals::endsTheEventLoop_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void TestQuitSignals::endsTheEventLoop()
{
    QFETCH(const int, number);
    const QuitSignals quitSignals;
    const QSignalSpy ended(qApp, &QCoreApplication::aboutToQuit);
    QTimer::singleShot(0, qApp, [number] { raise(number); });
    QCOMPARE(QGuiApplication::exec(), 0);
    QCOMPARE(ended.count(), 1);
}

void TestQuitSignals::keepsASignalFromBeforeTheLoop()
{
    const QuitSignals quitSignals;
    raise(SIGTERM);
    QCOMPARE(QGuiApplication::exec(), 0);
}

/// More signals than a pipe has bytes (65,536); the handler leaves errno as it was.
void TestQuitSignals::survivesManySignals()
{
    const QuitSignals quitSignals;
    errno = 0;
    QElapsedTimer elapsed;
    elapsed.start();
    int count = 0;
    for (; count < 70'000 && elapsed.elapsed() < 900; ++count) // A later signal would end the test.
        raise(SIGHUP);
    QCOMPARE(errno, 0);
    if (count < 70'000)
        QSKIP("This machine is too slow or busy.");
    QCOMPARE(QGuiApplication::exec(), 0);
}

void TestQuitSignals::leavesIgnoredSignalsIgnored()
{
    std::signal(SIGHUP, SIG_IGN);
    {
        const QuitSignals quitSignals;
        QVERIFY(handlerOf(SIGHUP) == SIG_IGN);
        QVERIFY(handlerOf(SIGTERM) != SIG_DFL);
    }
    QVERIFY(handlerOf(SIGHUP) == SIG_IGN);
}

void TestQuitSignals::restoresTheDefaultHandlers()
{
    {
        const QuitSignals quitSignals;
    }
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        QVERIFY(handlerOf(number) == SIG_DFL);
}

/// The signals then end the program as usual.
void TestQuitSignals::keepsTheDefaultHandlersWithoutDescriptors()
{
    std::optional<test::DescriptorLimit> limit(0);
    const QuitSignals quitSignals;
    limit.reset();
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        QVERIFY(handlerOf(number) == SIG_DFL);
    QTRY_VERIFY(handlerOf(SIGTERM) != SIG_DFL); // Once there are descriptors.
}

void TestQuitSignals::endsInTimeWhileTheMainThreadHangs_data()
{
    QTest::addColumn<bool>("isRepeated");
    QTest::addColumn<int>("leastSeconds");
    QTest::newRow("after one signal") << false << 3;
    QTest::newRow("after a second signal") << true << 2;
}

/// In a child, whose event loop never runs.
void TestQuitSignals::endsInTimeWhileTheMainThreadHangs()
{
    QFETCH(const bool, isRepeated);
    QFETCH(const int, leastSeconds);
    QElapsedTimer elapsed;
    elapsed.start();
    const pid_t child = fork();
    if (child == 0) {
        const QuitSignals quitSignals;
        raise(SIGTERM);
        raise(SIGHUP); // At once, as session managers do; it does not count as a second one.
        if (isRepeated) {
            sleep(2);
            raise(SIGTERM);
        }
        for (;;)
            pause();
    }
    int status = -1;
    QCOMPARE(waitpid(child, &status, 0), child);
    QVERIFY(WIFEXITED(status));
    QCOMPARE(WEXITSTATUS(status), 0);
    QVERIFY(elapsed.elapsed() > 1000 * leastSeconds - 100);
    QVERIFY2(elapsed.elapsed() < (isRepeated ? 3'900 : 60'000),
             qPrintable(QString::number(elapsed.elapsed())));
}

QTEST_MAIN(TestQuitSignals)
#include "tst_QuitSignals.moc"
