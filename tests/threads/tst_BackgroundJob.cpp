#include "threads/BackgroundJob.h"

#include <QTest>

#include <atomic>
#include <cstdlib>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <sys/wait.h>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

/// A job waits at this gate until the test opens it.
class Gate {
public:
    void open() { m_promise.set_value(); }

    /// For jobs, to wait on.
    std::shared_future<void> opened() const { return m_opened; }

private:
    std::promise<void> m_promise;
    std::shared_future<void> m_opened = m_promise.get_future().share();
};

/// Reached when the last copy of its token is gone, that is when the job that held it is over.
class End {
public:
    std::shared_ptr<void> token()
    {
        return std::shared_ptr<void>(nullptr, [reached = m_reached](void *) { *reached = true; });
    }
    bool isReached() const { return *m_reached; }

private:
    std::shared_ptr<std::atomic<bool>> m_reached = std::make_shared<std::atomic<bool>>(false);
};

} // namespace

class TestBackgroundJob : public QObject {
    Q_OBJECT

private slots:
    void deliversOnTheOwnersThread();
    void handsOverValues();
    void runsJobsAtTheSameTime();
    void deliversInTheOrderOfFinishing();
    void dropsTheValueOfAnOwnerThatIsGone();
    void dropsAValueWhoseOwnerGoesMeanwhile();
    void letsTheDeliveryDeleteTheOwner();
    void deliversReportsBeforeTheValue();
    void dropsTheReportsOfAnOwnerThatIsGone();
    void limitsTheJobsThatRunAtOnce();
    void abandonsTheJobOfAProgramThatEnds_data();
    void abandonsTheJobOfAProgramThatEnds();
};

void TestBackgroundJob::deliversOnTheOwnersThread()
{
    QObject owner;
    std::thread::id delivered;
    std::thread::id ran;
    runThenDeliver(
        &owner, [] { return std::this_thread::get_id(); },
        [&](std::thread::id id) {
            ran = id;
            delivered = std::this_thread::get_id();
        });
    QCOMPARE(delivered, std::thread::id()); // Never before the caller goes on.
    QTRY_COMPARE(delivered, std::this_thread::get_id());
    QVERIFY(ran != std::this_thread::get_id());
}

void TestBackgroundJob::handsOverValues()
{
    constexpr qsizetype jobs = 8;
    QObject owner;
    for (int round = 0; round < 10; ++round) {
        QStringList received;
        for (qsizetype i = 0; i < jobs; ++i) {
            runThenDeliver(
                &owner, [input = QString::number(i)] { return QStringList(100, input); },
                [&received](const QStringList &values) { received += values; });
        }
        QTRY_COMPARE(received.size(), jobs * 100);
        for (qsizetype i = 0; i < jobs; ++i)
            QCOMPARE(received.count(QString::number(i)), 100);
    }
}

void TestBackgroundJob::runsJobsAtTheSameTime()
{
    QObject owner;
    Gate slow;
    std::vector<std::string> received;
    const auto deliver = [&received](const std::string &value) { received.push_back(value); };
    runThenDeliver(
        &owner,
        [opened = slow.opened()] {
            opened.wait();
            return std::string("slow");
        },
        deliver);
    runThenDeliver(
        &owner, [] { return std::string("quick"); }, deliver);
    QTRY_COMPARE(received, std::vector<std::string>{"quick"});
    slow.open();
    QTRY_COMPARE(received, (std::vector<std::string>{"quick", "slow"}));
}

void TestBackgroundJob::deliversInTheOrderOfFinishing()
{
    constexpr int count = 8;
    QObject owner;
    std::vector<Gate> gates(count);
    std::vector<End> ends(count);
    std::vector<int> received;
    for (int i = 0; i < count; ++i) {
        runThenDeliver(
            &owner,
            [i, opened = gates[static_cast<std::size_t>(i)].opened()] {
                opened.wait();
                return i;
            },
            [&received](int value) { received.push_back(value); });
    }
    std::vector<int> finished;
    for (const int i : {5, 0, 7, 2, 1, 6, 3, 4}) {
        gates[static_cast<std::size_t>(i)].open();
        finished.push_back(i);
        QTRY_COMPARE(received, finished);
    }
}

void TestBackgroundJob::dropsTheValueOfAnOwnerThatIsGone()
{
    auto owner = std::make_unique<QObject>();
    Gate gate;
    End end;
    bool delivered = false;
    runThenDeliver(
        owner.get(),
        [opened = gate.opened(), token = end.token()] {
            opened.wait();
            return 1;
        },
        [&delivered](int) { delivered = true; });
    owner.reset();
    gate.open();
    QTRY_VERIFY(end.isReached());
    // The delivery of a later job follows whatever the first one may have posted.
    QObject other;
    bool later = false;
    runThenDeliver(
        &other, [] { return 2; }, [&later](int) { later = true; });
    QTRY_VERIFY(later);
    QVERIFY(!delivered);
}

void TestBackgroundJob::dropsAValueWhoseOwnerGoesMeanwhile()
{
    for (int i = 0; i < 100; ++i) {
        auto owner = std::make_unique<QObject>();
        End end;
        bool delivered = false;
        runThenDeliver(
            owner.get(), [token = end.token()] { return std::string(100, 'x'); },
            [&delivered](const std::string &) { delivered = true; });
        // The owner is deleted at about the time at which the job reports.
        while (i % 2 == 0 && !end.isReached())
            std::this_thread::yield();
        owner.reset();
        QCoreApplication::processEvents();
        QVERIFY(!delivered);
        while (!end.isReached())
            std::this_thread::yield();
    }
}

void TestBackgroundJob::letsTheDeliveryDeleteTheOwner()
{
    auto owner = std::make_unique<QObject>();
    bool delivered = false;
    runThenDeliver(
        owner.get(), [] { return 1; },
        [&](int) {
            owner.reset();
            delivered = true;
        });
    QTRY_VERIFY(delivered);
    QVERIFY(!owner);
}

void TestBackgroundJob::deliversReportsBeforeTheValue()
{
    QObject owner;
    Gate gate;
    QStringList received;
    QVERIFY(runThenCall(
        &owner,
        [opened = gate.opened()](const auto &report) {
            report();
            opened.wait();
            report();
        },
        [&received] { received.append(u"report"_s); }, [&received] { received.append(u"end"_s); }));
    QTRY_COMPARE(received, QStringList{u"report"_s});
    gate.open();
    QTRY_COMPARE(received, (QStringList{u"report"_s, u"report"_s, u"end"_s}));
}

void TestBackgroundJob::dropsTheReportsOfAnOwnerThatIsGone()
{
    auto owner = std::make_unique<QObject>();
    End end;
    Gate gate;
    int received = 0;
    runThenCall(
        owner.get(),
        [opened = gate.opened(), token = end.token()](const auto &report) {
            report();
            opened.wait();
            report();
        },
        [&] {
            ++received;
            owner.reset(); // The report may delete the owner.
        },
        [&received] { ++received; });
    QTRY_VERIFY(!owner);
    gate.open();
    QTRY_VERIFY(end.isReached());
    QCoreApplication::processEvents();
    QCOMPARE(received, 1);
}

void TestBackgroundJob::limitsTheJobsThatRunAtOnce()
{
    QObject owner;
    Gate gate;
    int delivered = 0;
    const auto count = [&delivered](int) { ++delivered; };
    const auto waiting = [opened = gate.opened()] {
        opened.wait();
        return 1;
    };
    for (int i = 0; i < mostBackgroundJobs + 5; ++i)
        QCOMPARE(runThenDeliver(&owner, waiting, count), i < mostBackgroundJobs);
    QVERIFY(isRunningBackgroundJobs());
    gate.open();
    QTRY_COMPARE(delivered, mostBackgroundJobs);
    QVERIFY(!isRunningBackgroundJobs());

    // Jobs that have ended make room for others.
    runThenDeliver(
        &owner, [] { return 1; }, count);
    QTRY_COMPARE(delivered, mostBackgroundJobs + 1);
}

void TestBackgroundJob::abandonsTheJobOfAProgramThatEnds_data()
{
    QTest::addColumn<QByteArray>("way");
    QTest::newRow("the owner and the application are destroyed") << QByteArray("return");
    QTest::newRow("exit with both alive") << QByteArray("exit");
}

void TestBackgroundJob::abandonsTheJobOfAProgramThatEnds()
{
    QFETCH(QByteArray, way);
    const int status = std::system((PENDING_JOB " " + way).constData());
    QVERIFY(WIFEXITED(status));
    QCOMPARE(WEXITSTATUS(status), 7);
}

QTEST_GUILESS_MAIN(TestBackgroundJob)
#include "tst_BackgroundJob.moc"
