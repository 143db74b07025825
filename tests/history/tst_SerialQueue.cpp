#include "history/SerialQueue.h"

#include <QTest>

#include <array>
#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <numeric>
#include <thread>
#include <vector>

#include <pthread.h>

using namespace corvane;

namespace {

constexpr SerialQueue::Limits noPatience{.mostWaiting = 3,
                                         .patience = std::chrono::milliseconds(0)};

/// Returns while a job of the queue waits until the gate is opened.
void hang(SerialQueue &queue, std::mutex &gate)
{
    std::atomic<bool> hangs = false;
    queue.async([&gate, &hangs] {
        hangs = true;
        const std::lock_guard waiting(gate);
    });
    while (!hangs)
        std::this_thread::yield();
}

} // namespace

class TestSerialQueue : public QObject {
    Q_OBJECT

private slots:
    void namesItsThread();
    void runsJobsOnOneThreadOfItsOwn();
    void keepsTheOrder();
    void returnsAtOnce();
    void waitsForWhatWasSubmittedBefore();
    void finishesItsJobsInItsDestructor();
    void takesJobsFromAJob();
    void takesJobsFromManyThreads();
    void dropsAJobOnceItHasRun();
    void keepsTheNewestJobsWhileOneHangs();
    void keepsAJobThatIsWaitedForWhileOneHangs();
    void keepsAllJobsWhileNoneHangs();
};

void TestSerialQueue::namesItsThread()
{
    SerialQueue queue("io.github.corvane.Corvane.history");
    std::array<char, 64> name = {};
    queue.sync([&name] { pthread_getname_np(pthread_self(), name.data(), name.size()); });
    const auto shown = QByteArray(name.data());
    QVERIFY(shown == "Corvane.history" || shown == "io.github.corvane.Corvane.history");
}

void TestSerialQueue::runsJobsOnOneThreadOfItsOwn()
{
    SerialQueue queue("test");
    std::thread::id first;
    std::thread::id second;
    queue.async([&first] { first = std::this_thread::get_id(); });
    queue.sync([&second] { second = std::this_thread::get_id(); });
    QVERIFY(first == second);
    QVERIFY(first != std::this_thread::get_id());
}

void TestSerialQueue::keepsTheOrder()
{
    std::vector<int> order;
    SerialQueue queue("test");
    for (int i = 0; i < 1000; ++i)
        queue.async([&order, i] { order.push_back(i); });
    queue.sync([&order] { order.push_back(1000); });
    std::vector<int> expected(1001);
    std::iota(expected.begin(), expected.end(), 0);
    QVERIFY(order == expected);
}

void TestSerialQueue::returnsAtOnce()
{
    std::mutex gate;
    gate.lock();
    SerialQueue queue("test");
    queue.async([&gate] { const std::lock_guard waiting(gate); });
    // The job can end only after this line is reached.
    gate.unlock();
    queue.sync([] {});
}

void TestSerialQueue::waitsForWhatWasSubmittedBefore()
{
    SerialQueue queue("test");
    int sum = 0;
    for (int i = 1; i <= 100; ++i) {
        queue.async([&sum] { ++sum; });
        int seen = 0;
        queue.sync([&sum, &seen] { seen = sum; });
        QCOMPARE(seen, i);
    }
}

void TestSerialQueue::finishesItsJobsInItsDestructor()
{
    int sum = 0;
    {
        SerialQueue queue("test");
        for (int i = 0; i < 1000; ++i)
            queue.async([&sum] { ++sum; });
    }
    QCOMPARE(sum, 1000);
}

void TestSerialQueue::takesJobsFromAJob()
{
    bool ran = false;
    {
        SerialQueue queue("test");
        queue.async([&queue, &ran] { queue.async([&ran] { ran = true; }); });
    }
    QVERIFY(ran);
}

void TestSerialQueue::takesJobsFromManyThreads()
{
    int sum = 0;
    SerialQueue queue("test");
    std::array<std::thread, 4> threads;
    for (std::thread &thread : threads) {
        thread = std::thread([&queue, &sum] {
            for (int j = 0; j < 250; ++j) {
                queue.async([&sum] { ++sum; });
                if (j % 50 == 0)
                    queue.sync([&sum] { ++sum; });
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    queue.sync([] {});
    QCOMPARE(sum, 4 * 255);
}

void TestSerialQueue::dropsAJobOnceItHasRun()
{
    const auto held = std::make_shared<int>(0);
    SerialQueue queue("test");
    queue.async([held] {});
    queue.sync([] {});
    queue.sync([] {});
    QCOMPARE(held.use_count(), 1L);
}

void TestSerialQueue::keepsTheNewestJobsWhileOneHangs()
{
    std::vector<int> ran;
    std::mutex gate;
    gate.lock();
    {
        SerialQueue queue("test", noPatience);
        hang(queue, gate);
        for (int i = 1; i <= 50; ++i)
            queue.async([&ran, i] { ran.push_back(i); });
        gate.unlock();
    }
    QCOMPARE(ran, (std::vector{48, 49, 50}));
}

void TestSerialQueue::keepsAJobThatIsWaitedForWhileOneHangs()
{
    bool hasRun = false;
    std::mutex gate;
    gate.lock();
    SerialQueue queue("test", noPatience);
    hang(queue, gate);
    std::thread waiting([&queue, &hasRun] { queue.sync([&hasRun] { hasRun = true; }); });
    for (int i = 1; i <= 50; ++i)
        queue.async([] {});
    gate.unlock();
    waiting.join();
    QVERIFY(hasRun);
}

void TestSerialQueue::keepsAllJobsWhileNoneHangs()
{
    int sum = 0;
    SerialQueue queue("test", {.mostWaiting = 3, .patience = std::chrono::hours(1)});
    for (int i = 0; i < 1000; ++i)
        queue.async([&sum] { ++sum; });
    queue.sync([] {});
    QCOMPARE(sum, 1000);
}

QTEST_APPLESS_MAIN(TestSerialQueue)
#include "tst_SerialQueue.moc"
