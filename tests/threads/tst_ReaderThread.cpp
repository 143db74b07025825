#include "threads/ReaderThread.h"

#include "support/Waiting.h"

#include <QTest>

#include <atomic>
#include <semaphore>
#include <string>
#include <vector>

using namespace corvane;

namespace {

constexpr std::chrono::milliseconds atOnce(0);

/// What jobs did, in their order.
class Log {
public:
    void append(const std::string &line)
    {
        const MutexLock lock(m_mutex);
        m_lines.push_back(line);
    }

    std::vector<std::string> lines() const
    {
        const MutexLock lock(m_mutex);
        return m_lines;
    }

private:
    mutable Mutex m_mutex = {};
    std::vector<std::string> m_lines GUARDED_BY(m_mutex) = {};
};

class NamedJob : public ReaderThread::Job {
public:
    NamedJob(std::string name, Log &log) : m_name(std::move(name)), m_log(log) { }
    void run() override { m_log.append(m_name + " runs"); }
    void tell() override { m_log.append(m_name + " tells"); }

private:
    std::string m_name;
    Log &m_log;
};

/// Runs until it is let go.
class StallingJob : public ReaderThread::Job {
public:
    void run() override
    {
        hasBegun = true;
        gate.acquire();
    }
    void tell() override { hasEnded = true; }

    std::binary_semaphore gate{0};
    std::atomic<bool> hasBegun = false;
    std::atomic<bool> hasEnded = false;
};

using Lines = std::vector<std::string>;

} // namespace

class TestReaderThread : public QObject {
    Q_OBJECT

private slots:
    void runsJobsInTheirOrder();
    void runsABatchAfterItsEnd();
    void wakesWithinABatchForOneWhoWaits();
    void runsAJobThatIsPostedTwiceOnce();
    void jobsLeaveAStalledOne();
    void withdrawnJobsAreNotRun();
    void aStalledJobIsLeftBehindAtTheEnd();
};

void TestReaderThread::runsJobsInTheirOrder()
{
    Log log;
    ReaderThread thread;
    QVERIFY(thread.start());
    const auto first = std::make_shared<NamedJob>("first", log);
    const auto second = std::make_shared<NamedJob>("second", log);
    thread.post(first, 1);
    thread.post(second, 1);
    const Lines expected = {"first runs", "first tells", "second runs", "second tells"};
    TRY_VERIFY(log.lines() == expected);
}

void TestReaderThread::runsABatchAfterItsEnd()
{
    Log log;
    ReaderThread thread;
    QVERIFY(thread.start());
    {
        const ReaderThread::Batch batch(thread);
        thread.post(std::make_shared<NamedJob>("first", log), 1);
        thread.post(std::make_shared<NamedJob>("second", log), 1);
    }
    TRY_COMPARE(log.lines().size(), std::size_t(4));
}

void TestReaderThread::wakesWithinABatchForOneWhoWaits()
{
    Log log;
    ReaderThread thread;
    QVERIFY(thread.start());
    const ReaderThread::Batch batch(thread);
    thread.post(std::make_shared<NamedJob>("first", log), 1);
    thread.wake();
    TRY_COMPARE(log.lines().size(), std::size_t(2));
}

void TestReaderThread::runsAJobThatIsPostedTwiceOnce()
{
    Log log;
    ReaderThread thread;
    QVERIFY(thread.start());
    const auto stalling = std::make_shared<StallingJob>();
    thread.post(stalling, 1);
    TRY_VERIFY(stalling->hasBegun);
    const auto job = std::make_shared<NamedJob>("job", log);
    thread.post(job, 1);
    thread.post(job, 2);
    thread.post(std::make_shared<NamedJob>("last", log), 2);
    stalling->gate.release();
    const Lines expected = {"job runs", "job tells", "last runs", "last tells"};
    TRY_VERIFY(log.lines() == expected);
}

void TestReaderThread::jobsLeaveAStalledOne()
{
    Log log;
    ReaderThread thread;
    QVERIFY(thread.start());
    const auto stalling = std::make_shared<StallingJob>();
    const auto other = std::make_shared<NamedJob>("other", log);
    QVERIFY(!thread.leaveIfStalled(*other, 100)); // Nothing runs.
    thread.post(stalling, 100);
    TRY_VERIFY(stalling->hasBegun);
    thread.post(other, 100);
    QVERIFY(!thread.leaveIfStalled(*other, 100.4));
    QVERIFY(!thread.leaveIfStalled(*stalling, 110)); // It keeps the thread.
    QVERIFY(thread.leaveIfStalled(*other, 100.5));
    stalling->gate.release();
    TRY_VERIFY(stalling->hasEnded);
    thread.post(std::make_shared<NamedJob>("last", log), 101);
    const Lines expected = {"last runs", "last tells"};
    TRY_VERIFY(log.lines() == expected);
}

void TestReaderThread::withdrawnJobsAreNotRun()
{
    Log log;
    ReaderThread thread;
    QVERIFY(thread.start());
    const auto stalling = std::make_shared<StallingJob>();
    thread.post(stalling, 1);
    TRY_VERIFY(stalling->hasBegun);
    const auto withdrawn = std::make_shared<NamedJob>("withdrawn", log);
    thread.post(withdrawn, 1);
    QVERIFY(thread.withdraw(*withdrawn, atOnce));
    QVERIFY(!thread.withdraw(*stalling, atOnce)); // It runs.
    stalling->gate.release();
    QVERIFY(thread.withdraw(*stalling, std::chrono::minutes(1)));
    thread.post(std::make_shared<NamedJob>("last", log), 1);
    const Lines expected = {"last runs", "last tells"};
    TRY_VERIFY(log.lines() == expected);
}

void TestReaderThread::aStalledJobIsLeftBehindAtTheEnd()
{
    const auto stalling = std::make_shared<StallingJob>();
    {
        ReaderThread thread;
        QVERIFY(thread.start());
        thread.post(stalling, 1);
        TRY_VERIFY(stalling->hasBegun);
    }
    QVERIFY(!stalling->hasEnded);
    stalling->gate.release();
    TRY_VERIFY(stalling->hasEnded);
}

QTEST_GUILESS_MAIN(TestReaderThread)
#include "tst_ReaderThread.moc"
