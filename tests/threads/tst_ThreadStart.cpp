#include "threads/ThreadStart.h"

#include "support/NoThreads.h"
#include "threads/BackgroundJob.h"

#include <QCoreApplication>
#include <QTest>

#include <optional>

using namespace corvane;
using namespace corvane::test;

class TestThreadStart : public QObject {
    Q_OBJECT

private slots:
    void runsTheJobOnAThreadOfItsOwn();
    void reportsThatTheSystemRefusesThreads();
    void dropsABackgroundJobWithoutAThread();
};

void TestThreadStart::runsTheJobOnAThreadOfItsOwn()
{
    QVERIFY(canStartThread());
    std::thread::id runner;
    std::thread thread = startThread([&runner] { runner = std::this_thread::get_id(); });
    QVERIFY(thread.joinable());
    const std::thread::id started = thread.get_id();
    thread.join();
    QVERIFY(runner == started);
}

void TestThreadStart::reportsThatTheSystemRefusesThreads()
{
    {
        const NoThreads limit;
        bool hasRun = false;
        QVERIFY(!startThread([&hasRun] { hasRun = true; }).joinable());
        QVERIFY(!hasRun);
        QVERIFY(!canStartThread());
    }
    QVERIFY(canStartThread());
}

/// It counts as one too many; the next one runs.
void TestThreadStart::dropsABackgroundJobWithoutAThread()
{
    QObject owner;
    int delivered = 0;
    {
        const NoThreads limit;
        for (int count = 0; count < 2 * mostBackgroundJobs; ++count)
            runThenCall(
                &owner, [] {}, [&delivered] { delivered += 100; });
        QVERIFY(owner.children().isEmpty());
    }
    runThenCall(
        &owner, [] {}, [&delivered] { ++delivered; });
    QTRY_COMPARE(delivered, 1);
}

QTEST_GUILESS_MAIN(TestThreadStart)
#include "tst_ThreadStart.moc"
