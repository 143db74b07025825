#include "gpu/NvidiaReader_linux.h"

#include "gpu/StandInNvidia.h"
#include "support/NoThreads.h"
#include "support/Waiting.h"

#include <QTest>

#include <atomic>
#include <optional>

using namespace corvane;
using corvane::test::StandInNvidia;

namespace {

/// Stepped by hand, read on both threads.
class SteppedClock {
public:
    std::function<double()> function()
    {
        return [this] {
            if (std::this_thread::get_id() != m_main)
                ++m_readsOfTheThread;
            return m_now.load();
        };
    }

    void step(double seconds) { m_now = m_now + seconds; }
    int readsOfTheThread() const { return m_readsOfTheThread; }

private:
    const std::thread::id m_main = std::this_thread::get_id();
    std::atomic<double> m_now = 100;
    std::atomic<int> m_readsOfTheThread = 0;
};

} // namespace

class TestNvidiaReader : public QObject {
    Q_OBJECT

private slots:
    void opensNothingWithoutARequest();
    void deliversAReadingPerRequest();
    void anOldReadingIsAbsent();
    void aStallingLibraryDelaysNoCall();
    void releaseClosesTheLibraryAndForgets();
    void aReadingThatReleaseOvertookIsDropped();
    void triesAgainAMinuteLater();
    void opensAgainAfterTheGPUWasLost();
    void keepsReadingTheOthersAfterOneGPUWasLost();
    void tellsWhyThereIsNoReading();
    void readsProcessesOncePerRequest();
    void endsWhileTheLibraryStalls();
    void goesOnOnceThereIsAThread();
};

void TestNvidiaReader::opensNothingWithoutARequest()
{
    const StandInNvidia nvidia;
    {
        const NvidiaReader reader(STAND_IN_NVML);
        QVERIFY(!reader.newest());
    }
    QCOMPARE(nvidia.calls("nvmlInit_v2"), 0);
}

void TestNvidiaReader::goesOnOnceThereIsAThread()
{
    const StandInNvidia nvidia;
    std::optional<NvidiaReader> reader;
    {
        const test::NoThreads limit;
        const NvidiaReader neverStarted(STAND_IN_NVML);
        reader.emplace(STAND_IN_NVML);
        reader->request();
        reader->release();
        QVERIFY(!reader->newest());
    }
    reader->request();
    TRY_VERIFY(reader->newest());
}

void TestNvidiaReader::deliversAReadingPerRequest()
{
    const StandInNvidia nvidia;
    SteppedClock clock;
    NvidiaReader reader(STAND_IN_NVML, clock.function());
    reader.request();
    TRY_VERIFY(reader.newest());
    const auto reading = reader.newest();
    QCOMPARE(reading->seconds, 100.0);
    QCOMPARE(reading->devices.size(), std::size_t(1));
    QCOMPARE(reading->devices[0].busyFraction, std::optional(0.4));

    nvidia.script("nvmlDeviceGetUtilizationRates 80\n");
    clock.step(1);
    reader.request();
    TRY_VERIFY(reader.newest()->seconds == 101);
    QCOMPARE(reader.newest()->devices[0].busyFraction, std::optional(0.8));
    QCOMPARE(nvidia.calls("nvmlInit_v2"), 1);
}

void TestNvidiaReader::anOldReadingIsAbsent()
{
    const StandInNvidia nvidia;
    SteppedClock clock;
    NvidiaReader reader(STAND_IN_NVML, clock.function());
    reader.request();
    TRY_VERIFY(reader.newest());
    clock.step(2.5);
    QVERIFY(reader.newest());
    clock.step(0.1);
    QVERIFY(!reader.newest());
}

void TestNvidiaReader::aStallingLibraryDelaysNoCall()
{
    const StandInNvidia nvidia;
    SteppedClock clock;
    NvidiaReader reader(STAND_IN_NVML, clock.function());
    reader.request();
    TRY_VERIFY(reader.newest());

    nvidia.stall("nvmlDeviceGetPowerUsage");
    reader.request();
    TRY_VERIFY(nvidia.calls("nvmlDeviceGetPowerUsage") == 2);
    // The test would hang here if any of these waited for the library.
    for (int tick = 0; tick < 20; ++tick) {
        reader.request();
        QCOMPARE(reader.newest().has_value(), tick <= 2);
        clock.step(1);
    }
    QCOMPARE(nvidia.calls("nvmlDeviceGetPowerUsage"), 2);

    nvidia.letGo();
    TRY_VERIFY(reader.newest()); // For the request of the last tick.
    QCOMPARE(reader.newest()->seconds, 120.0);
}

void TestNvidiaReader::releaseClosesTheLibraryAndForgets()
{
    const StandInNvidia nvidia;
    SteppedClock clock;
    NvidiaReader reader(STAND_IN_NVML, clock.function());
    reader.request();
    TRY_VERIFY(reader.newest());
    reader.release();
    QVERIFY(!reader.newest());
    TRY_VERIFY(nvidia.calls("nvmlShutdown") == 1);

    reader.request(); // At once: nothing failed.
    TRY_VERIFY(reader.newest());
    QCOMPARE(nvidia.calls("nvmlInit_v2"), 2);
}

void TestNvidiaReader::aReadingThatReleaseOvertookIsDropped()
{
    const StandInNvidia nvidia;
    SteppedClock clock;
    NvidiaReader reader(STAND_IN_NVML, clock.function());
    nvidia.stall("nvmlDeviceGetPowerUsage");
    reader.request();
    TRY_VERIFY(nvidia.calls("nvmlDeviceGetPowerUsage") == 1);
    reader.release();
    nvidia.letGo();
    TRY_VERIFY(nvidia.calls("nvmlShutdown") == 1);
    QVERIFY(!reader.newest());
}

void TestNvidiaReader::triesAgainAMinuteLater()
{
    const StandInNvidia nvidia;
    nvidia.script("nvmlInit_v2 fails 9\n");
    SteppedClock clock;
    NvidiaReader reader(STAND_IN_NVML, clock.function());
    reader.request();
    TRY_VERIFY(clock.readsOfTheThread() == 1);
    clock.step(59);
    reader.request();
    TRY_VERIFY(clock.readsOfTheThread() == 2);

    nvidia.script({});
    clock.step(1);
    reader.request();
    TRY_VERIFY(reader.newest());
    QCOMPARE(nvidia.calls("nvmlInit_v2"), 2); // At 0 and at 60 seconds, not at 59.
}

void TestNvidiaReader::opensAgainAfterTheGPUWasLost()
{
    const StandInNvidia nvidia;
    SteppedClock clock;
    NvidiaReader reader(STAND_IN_NVML, clock.function());
    reader.request();
    TRY_VERIFY(reader.newest());

    nvidia.script("nvmlDeviceGetPowerUsage fails 15\n");
    reader.request();
    TRY_VERIFY(nvidia.calls("nvmlShutdown") == 1);

    nvidia.script({});
    clock.step(61);
    QVERIFY(!reader.newest());
    reader.request();
    TRY_VERIFY(reader.newest());
    QCOMPARE(nvidia.calls("nvmlInit_v2"), 2);
}

/// It is opened anew to find the lost one again, but once a minute.
void TestNvidiaReader::keepsReadingTheOthersAfterOneGPUWasLost()
{
    const StandInNvidia nvidia;
    nvidia.script("nvmlDeviceGetCount_v2 2\nnvmlDeviceGetPowerUsage@1 fails 15\n");
    SteppedClock clock;
    NvidiaReader reader(STAND_IN_NVML, clock.function());
    for (int tick = 0; tick < 7; ++tick) {
        clock.step(10);
        const double now = clock.function()();
        reader.request();
        TRY_VERIFY(reader.newest() && reader.newest()->seconds == now);
        QCOMPARE(reader.newest()->devices.size(), std::size_t(1));
    }
    QCOMPARE(reader.coverage(), Coverage::known);
    TRY_COMPARE(nvidia.calls("nvmlShutdown"), 2);
}

void TestNvidiaReader::tellsWhyThereIsNoReading()
{
    const StandInNvidia nvidia;
    nvidia.script("nvmlInit_v2 fails 18\n");
    SteppedClock clock;
    NvidiaReader reader(STAND_IN_NVML, clock.function());
    QCOMPARE(reader.coverage(), Coverage::known);
    reader.request();
    TRY_COMPARE(reader.coverage(), Coverage::newDriver);
    nvidia.script({});
    clock.step(61);
    reader.request();
    TRY_COMPARE(reader.coverage(), Coverage::known);
    TRY_VERIFY(reader.newest());

    NvidiaReader missing("/nowhere/libnvidia-ml.so.1");
    missing.request();
    TRY_COMPARE(missing.coverage(), Coverage::noLibrary);
}

void TestNvidiaReader::readsProcessesOncePerRequest()
{
    const StandInNvidia nvidia;
    SteppedClock clock;
    NvidiaReader reader(STAND_IN_NVML, clock.function());
    reader.request();
    TRY_VERIFY(reader.newest());
    QVERIFY(!reader.newest()->devices[0].processes);
    clock.step(1);
    reader.request(true);
    TRY_VERIFY(reader.newest()->devices[0].processes);
    clock.step(1);
    reader.request();
    TRY_VERIFY(!reader.newest()->devices[0].processes);
}

void TestNvidiaReader::endsWhileTheLibraryStalls()
{
    const StandInNvidia nvidia;
    auto clock = std::make_shared<SteppedClock>(); // The thread may outlive the reader.
    nvidia.stall("nvmlInit_v2");
    {
        NvidiaReader reader(STAND_IN_NVML, [clock, now = clock->function()] { return now(); });
        reader.request();
        TRY_VERIFY(nvidia.calls("nvmlInit_v2") == 1);
    } // The test would hang here if the destructor waited for the library.
    nvidia.letGo();
    TRY_VERIFY(nvidia.calls("nvmlShutdown") == 1); // The thread ends by itself and cleans up.
}

QTEST_GUILESS_MAIN(TestNvidiaReader)
#include "tst_NvidiaReader.moc"
