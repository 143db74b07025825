#include "app/QuitSignals.h"

#include <QGuiApplication>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <array>

#include <cerrno>
#include <csignal>
#include <sys/resource.h>
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
    void remembersASignalFromBeforeTheLoop();
    void survivesAStorm();
    void leavesIgnoredSignalsIgnored();
    void givesTheSignalsBack();
    void leavesTheSignalsAloneWithoutDescriptors();
    void brokenPipesAreErrors();
};

/// As the system gives them to a program.
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

void TestQuitSignals::remembersASignalFromBeforeTheLoop()
{
    const QuitSignals quitSignals;
    raise(SIGTERM);
    QCOMPARE(QGuiApplication::exec(), 0);
}

/// More than the pipe holds.
void TestQuitSignals::survivesAStorm()
{
    const QuitSignals quitSignals;
    for (int count = 0; count < 100'000; ++count) {
        errno = 0;
        raise(SIGHUP);
        QCOMPARE(errno, 0);
    }
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

void TestQuitSignals::givesTheSignalsBack()
{
    {
        const QuitSignals quitSignals;
    }
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        QVERIFY(handlerOf(number) == SIG_DFL);
}

/// They end the program as ever.
void TestQuitSignals::leavesTheSignalsAloneWithoutDescriptors()
{
    rlimit before = {};
    QCOMPARE(getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none{.rlim_cur = 0, .rlim_max = before.rlim_max};
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &none), 0);
    const QuitSignals quitSignals;
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &before), 0);
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        QVERIFY(handlerOf(number) == SIG_DFL);
}

void TestQuitSignals::brokenPipesAreErrors()
{
    ignoreBrokenPipes();
    std::array<int, 2> ends = {};
    QCOMPARE(pipe(ends.data()), 0);
    close(ends[0]);
    QCOMPARE(write(ends[1], "x", 1), -1);
    QCOMPARE(errno, EPIPE);
    close(ends[1]);
}

QTEST_MAIN(TestQuitSignals)
#include "tst_QuitSignals.moc"
