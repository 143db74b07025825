#include "threads/Mutex.h"

#include <QTest>

#include <thread>
#include <vector>

using namespace corvane;
using namespace std::chrono_literals;

namespace {

struct Counter {
    Mutex mutex;
    Condition changed;
    int value GUARDED_BY(mutex) = 0;
};

} // namespace

class TestMutex : public QObject {
    Q_OBJECT

private slots:
    void letsOneThreadInAtATime();
    void wakesThoseThatWait();
    void stopsWaitingWhenTheTimeIsOver();
};

void TestMutex::letsOneThreadInAtATime()
{
    constexpr int additions = 10'000;
    Counter counter;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&counter] {
            for (int added = 0; added < additions; ++added) {
                const MutexLock lock(counter.mutex);
                ++counter.value;
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    const MutexLock lock(counter.mutex);
    QCOMPARE(counter.value, 4 * additions);
}

void TestMutex::wakesThoseThatWait()
{
    Counter counter;
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([&counter] {
            MutexLock lock(counter.mutex);
            while (counter.value == 0)
                counter.changed.wait(lock);
            ++counter.value;
            counter.changed.notifyOne();
        });
    }
    MutexLock lock(counter.mutex);
    counter.value = 1;
    counter.changed.notifyAll();
    while (counter.value < 4)
        QVERIFY(counter.changed.waitFor(lock, 60s));
    QCOMPARE(counter.value, 4);
    for (std::thread &thread : threads)
        thread.join();
}

void TestMutex::stopsWaitingWhenTheTimeIsOver()
{
    Counter counter;
    MutexLock lock(counter.mutex);
    QVERIFY(!counter.changed.waitFor(lock, 1ms));
}

QTEST_APPLESS_MAIN(TestMutex)
#include "tst_Mutex.moc"
