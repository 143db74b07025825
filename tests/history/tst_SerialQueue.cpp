#include "history/SerialQueue.h"

#include <QTest>

#include <array>
#include <memory>
#include <mutex>
#include <numeric>
#include <thread>
#include <vector>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestSerialQueue : public QObject {
    Q_OBJECT

private slots:
    void knowsItsLabel();
    void runsJobsOnOneThreadOfItsOwn();
    void keepsTheOrder();
    void returnsAtOnce();
    void waitsForWhatWasHandedInBefore();
    void finishesBeforeItIsGone();
    void takesJobsFromAJob();
    void takesJobsFromManyThreads();
    void dropsAJobOnceItHasRun();
};

void TestSerialQueue::knowsItsLabel()
{
    const SerialQueue queue(u"some.label"_s);
    QCOMPARE(queue.label(), u"some.label"_s);
}

void TestSerialQueue::runsJobsOnOneThreadOfItsOwn()
{
    SerialQueue queue{QString()};
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
    SerialQueue queue{QString()};
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
    SerialQueue queue{QString()};
    queue.async([&gate] { const std::lock_guard waiting(gate); });
    // The job can end only after this line is reached.
    gate.unlock();
    queue.sync([] {});
}

void TestSerialQueue::waitsForWhatWasHandedInBefore()
{
    SerialQueue queue{QString()};
    int sum = 0;
    for (int i = 1; i <= 100; ++i) {
        queue.async([&sum] { ++sum; });
        int seen = 0;
        queue.sync([&sum, &seen] { seen = sum; });
        QCOMPARE(seen, i);
    }
}

void TestSerialQueue::finishesBeforeItIsGone()
{
    int sum = 0;
    {
        SerialQueue queue{QString()};
        for (int i = 0; i < 1000; ++i)
            queue.async([&sum] { ++sum; });
    }
    QCOMPARE(sum, 1000);
}

void TestSerialQueue::takesJobsFromAJob()
{
    bool ran = false;
    {
        SerialQueue queue{QString()};
        queue.async([&queue, &ran] { queue.async([&ran] { ran = true; }); });
    }
    QVERIFY(ran);
}

void TestSerialQueue::takesJobsFromManyThreads()
{
    int sum = 0;
    SerialQueue queue{QString()};
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
    SerialQueue queue{QString()};
    queue.async([held] {});
    queue.sync([] {});
    queue.sync([] {});
    QCOMPARE(held.use_count(), 1L);
}

QTEST_APPLESS_MAIN(TestSerialQueue)
#include "tst_SerialQueue.moc"
