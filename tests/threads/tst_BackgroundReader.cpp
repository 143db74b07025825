#include "threads/BackgroundReader.h"

#include "support/Waiting.h"

#include <QTest>

#include <atomic>
#include <memory>
#include <semaphore>
#include <thread>

using namespace corvane;

namespace {

constexpr std::chrono::minutes untilRead(1);

/// Does not open anything.
template <typename Value>
BackgroundReader<Value> reading(typename BackgroundReader<Value>::Read read)
{
    return BackgroundReader<Value>([read = std::move(read)] { return read; });
}

} // namespace

class TestBackgroundReader : public QObject {
    Q_OBJECT

private slots:
    void readsWhenAsked();
    void anOldValueIsAbsent();
    void aReadThatNeverEndsDelaysNothing();
    void opensAndReadsOnAThreadOfItsOwn();
    void anOpeningThatNeverEndsDelaysNothing();
    void aStalledFunctionIsLeftBehindAtTheEnd();
    void anUnusedOneOpensNothing();
    void severalShareAThread();
    void aStalledOneSilencesNoOther();
};

void TestBackgroundReader::readsWhenAsked()
{
    auto reader = reading<double>([](double now) { return now * 2; });
    QVERIFY(!reader.newest(1));
    reader.request(1, untilRead);
    QCOMPARE(reader.newest(1), std::optional(2.0));
    reader.request(2, untilRead);
    QCOMPARE(reader.newest(2), std::optional(4.0));
    reader.request(3); // Without waiting.
    TRY_COMPARE(reader.newest(3), std::optional(6.0));
}

void TestBackgroundReader::anOldValueIsAbsent()
{
    auto reader = reading<int>([](double) { return 7; });
    reader.request(10, untilRead);
    QCOMPARE(reader.newest(12.5), std::optional(7));
    QVERIFY(!reader.newest(12.6));
}

void TestBackgroundReader::aReadThatNeverEndsDelaysNothing()
{
    std::atomic<bool> hangs = false;
    std::atomic<int> reads = 0; // Outlive the reader.
    auto reader = reading<int>([&](double) {
        ++reads;
        while (hangs)
            std::this_thread::yield();
        return 7;
    });
    reader.request(1, untilRead);
    QCOMPARE(reader.newest(1), std::optional(7));

    hangs = true;
    reader.request(2);
    TRY_COMPARE(reads.load(), 2);
    for (double now = 3; now < 10; ++now)
        reader.request(now, untilRead); // Waits for nothing: an answer is due.
    QVERIFY(!reader.newest(10));

    hangs = false;
    TRY_COMPARE(reader.newest(10), std::optional(7)); // The newest request is answered next.
    QCOMPARE(reads.load(), 3);
}

void TestBackgroundReader::opensAndReadsOnAThreadOfItsOwn()
{
    std::atomic<std::thread::id> opener;
    std::atomic<std::thread::id> caller;
    std::atomic<int> openings = 0;
    BackgroundReader<int> reader([&] {
        opener = std::this_thread::get_id();
        ++openings;
        return [&](double) {
            caller = std::this_thread::get_id();
            return 1;
        };
    });
    for (double now = 1; now < 5; ++now) {
        reader.request(now, untilRead);
        QVERIFY(reader.newest(now));
    }
    QCOMPARE(openings, 1);
    QVERIFY(caller.load() == opener.load());
    QVERIFY(caller.load() != std::this_thread::get_id());
}

void TestBackgroundReader::anOpeningThatNeverEndsDelaysNothing()
{
    std::binary_semaphore gate(0);
    BackgroundReader<int> reader([&] {
        gate.acquire();
        return [](double) { return 7; };
    });
    reader.request(1);
    for (double now = 2; now < 10; ++now) {
        reader.request(now, untilRead);
        QVERIFY(!reader.newest(now));
    }
    gate.release();
    TRY_COMPARE(reader.newest(9), std::optional(7));
}

void TestBackgroundReader::aStalledFunctionIsLeftBehindAtTheEnd()
{
    std::binary_semaphore gate(0);
    std::atomic<bool> hasBegun = false;
    std::atomic<bool> hasEnded = false;
    {
        std::shared_ptr<void> owned(nullptr, [&hasEnded](void *) { hasEnded = true; });
        BackgroundReader<int> reader([&, owned = std::move(owned)]() mutable {
            return [&, owned = std::move(owned)](double) {
                hasBegun = true;
                gate.acquire();
                return 1;
            };
        });
        reader.request(1);
        TRY_VERIFY(hasBegun);
    }
    QVERIFY(!hasEnded);
    gate.release();
    TRY_VERIFY(hasEnded);
}

void TestBackgroundReader::anUnusedOneOpensNothing()
{
    std::atomic<int> openings = 0;
    {
        const BackgroundReader<int> reader([&] {
            ++openings;
            return [](double) { return 1; };
        });
    }
    QCOMPARE(openings, 0);
}

void TestBackgroundReader::severalShareAThread()
{
    const auto thread = std::make_shared<ReaderThread>();
    const auto open = [] { return [](double) { return std::this_thread::get_id(); }; };
    using Reader = BackgroundReader<std::thread::id>;
    Reader one(open, Reader::oldestLive, thread);
    auto other = std::make_unique<Reader>(open, Reader::oldestLive, thread);
    one.request(1, untilRead);
    other->request(1, untilRead);
    QVERIFY(one.newest(1).value() == other->newest(1).value());
    {
        const ReaderThread::Batch batch(*thread);
        one.request(2, untilRead); // Waits within the batch.
        QVERIFY(one.newest(4.5).has_value());
        other->request(2);
    }
    TRY_VERIFY(other->newest(4.5).has_value());
    other.reset();
    one.request(3, untilRead);
    QVERIFY(one.newest(5.5).has_value());
}

/// The stalled one keeps the thread; the other opens its files anew, on another one.
void TestBackgroundReader::aStalledOneSilencesNoOther()
{
    std::binary_semaphore gate(0);
    std::atomic<bool> hangs = false;
    std::atomic<bool> hasBegun = false;
    std::atomic<int> openings = 0; // Outlive the readers.
    const auto thread = std::make_shared<ReaderThread>();
    BackgroundReader<double> stalling(
        [&] {
            return [&](double now) {
                hasBegun = hangs.load();
                if (hangs)
                    gate.acquire();
                return now;
            };
        },
        2.5, thread);
    BackgroundReader<double> other(
        [&] {
            ++openings;
            return [](double now) { return now; };
        },
        2.5, thread);
    stalling.request(1, untilRead);
    other.request(1, untilRead);

    hangs = true;
    stalling.request(2);
    TRY_VERIFY(hasBegun);
    other.request(2);
    QCOMPARE(other.newest(2), std::optional(1.0)); // Behind the stalled one, for a tick.
    for (double now = 3; now < 10; ++now) {
        stalling.request(now);
        other.request(now, untilRead);
        TRY_COMPARE(other.newest(now), std::optional(now));
    }
    QCOMPARE(openings, 2);
    QVERIFY(!stalling.newest(9));

    hangs = false;
    gate.release();
    TRY_COMPARE(stalling.newest(9), std::optional(9.0));
    stalling.request(10, untilRead);
    other.request(10, untilRead);
    QCOMPARE(stalling.newest(10), std::optional(10.0));
    QCOMPARE(other.newest(10), std::optional(10.0));
    QCOMPARE(openings, 2);
}

QTEST_GUILESS_MAIN(TestBackgroundReader)
#include "tst_BackgroundReader.moc"
