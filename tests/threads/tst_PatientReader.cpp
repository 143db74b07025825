#include "threads/PatientReader.h"

#include <QTest>

#include <atomic>
#include <semaphore>
#include <thread>

using namespace corvane;

namespace {

/// A function that stalls on demand and counts its calls. Outlives the reader's thread.
struct StallingSource {
    PatientReader<int>::Open open()
    {
        return [this] {
            ++openings;
            return [this] {
                ++calls;
                if (isStalled)
                    gate.acquire();
                return calls.load();
            };
        };
    }

    std::atomic<int> openings = 0;
    std::atomic<int> calls = 0;
    std::atomic<bool> isStalled = false;
    std::counting_semaphore<100> gate{0};
};

} // namespace

class TestPatientReader : public QObject {
    Q_OBJECT

private slots:
    void returnsANewValueEachTime();
    void readsOnAThreadOfItsOwn();
    void aStallHasOneCallAndAnOldValue();
    void aStalledFunctionIsLeftBehindAtTheEnd();
    void anUnusedOneOpensNothing();
};

void TestPatientReader::returnsANewValueEachTime()
{
    StallingSource source;
    PatientReader<int> reader(source.open(), [] { return 0.0; });
    for (int read = 1; read <= 20; ++read)
        QTRY_COMPARE_WITH_TIMEOUT(reader.read().value_or(0) >= read, true, 60'000);
    QCOMPARE(source.openings, 1);
}

void TestPatientReader::readsOnAThreadOfItsOwn()
{
    std::atomic<std::thread::id> opener;
    std::atomic<std::thread::id> caller;
    PatientReader<int> reader(
        [&opener, &caller] {
            opener = std::this_thread::get_id();
            return [&caller] {
                caller = std::this_thread::get_id();
                return 1;
            };
        },
        [] { return 0.0; });
    QTRY_VERIFY_WITH_TIMEOUT(reader.read(), 60'000);
    QVERIFY(caller.load() == opener.load());
    QVERIFY(caller.load() != std::this_thread::get_id());
}

void TestPatientReader::aStallHasOneCallAndAnOldValue()
{
    StallingSource source;
    double now = 100;
    PatientReader<int> reader(source.open(), [&now] { return now; });
    QTRY_VERIFY_WITH_TIMEOUT(reader.read(), 60'000);
    const int before = source.calls;
    source.isStalled = true;
    now = 101;
    const auto old = reader.read();
    QVERIFY(old);
    QVERIFY(*old <= before);
    QTRY_COMPARE_WITH_TIMEOUT(source.calls, before + 1, 60'000);
    now = 104;
    for (int read = 0; read < 100; ++read)
        QVERIFY2(!reader.read(), "too old to be live");
    QCOMPARE(source.calls, before + 1);
    source.isStalled = false;
    source.gate.release();
    // The late answer is as old as its question; the next one is new.
    QTRY_VERIFY_WITH_TIMEOUT(reader.read(), 60'000);
    QVERIFY(source.calls > before + 1);
}

void TestPatientReader::aStalledFunctionIsLeftBehindAtTheEnd()
{
    StallingSource source;
    source.isStalled = true;
    std::atomic<bool> hasEnded = false;
    {
        const std::shared_ptr<void> end(nullptr, [&hasEnded](void *) { hasEnded = true; });
        PatientReader<int> reader(
            [&source, end] { return [end, read = source.open()()] { return read(); }; },
            [] { return 0.0; });
        QVERIFY(!reader.read());
        QTRY_COMPARE_WITH_TIMEOUT(source.calls, 1, 60'000);
    }
    QVERIFY(!hasEnded);
    source.gate.release();
    QTRY_VERIFY_WITH_TIMEOUT(hasEnded, 60'000);
}

void TestPatientReader::anUnusedOneOpensNothing()
{
    StallingSource source;
    {
        const PatientReader<int> reader(source.open(), [] { return 0.0; });
    }
    QCOMPARE(source.openings, 0);
}

QTEST_APPLESS_MAIN(TestPatientReader)
#include "tst_PatientReader.moc"
