#include "app/QuitSignals.h"

#include <QGuiApplication>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

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
    void keepsASignalFromBeforeTheLoop();
    void survivesManySignals();
    void leavesIgnoredSignalsIgnored();
    void restoresTheDefaultHandlers();
    void keepsTheDefaultHandlersWithoutDescriptors();
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
    for (int count = 0; count < 70'000; ++count)
        raise(SIGHUP);
    QCOMPARE(errno, 0);
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
    rlimit before = {};
    QCOMPARE(getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none{.rlim_cur = 0, .rlim_max = before.rlim_max};
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &none), 0);
    const QuitSignals quitSignals;
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &before), 0);
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        QVERIFY(handlerOf(number) == SIG_DFL);
}

QTEST_MAIN(TestQuitSignals)
#include "tst_QuitSignals.moc"
