#include "gpu/NvidiaGPUs_linux.h"

#include "gpu/StandInNvidia.h"
#include "support/AccessWatch.h"
#include "support/MachineTree.h"
#include "support/Waiting.h"

#include <QTest>

#include <atomic>

using namespace corvane;
using corvane::test::AccessWatch;
using corvane::test::MachineTree;
using corvane::test::patience;
using corvane::test::StandInNvidia;

using namespace Qt::StringLiterals;

namespace {

const std::string card = "sys/devices/pci0000:00/0000:01:00.0";

QString nameOf(Coverage coverage)
{
    switch (coverage) {
    case Coverage::absent:
        return u"absent"_s;
    case Coverage::asleep:
        return u"asleep"_s;
    case Coverage::locked:
        return u"locked"_s;
    case Coverage::unpublished:
        return u"unpublished"_s;
    case Coverage::noLibrary:
        return u"noLibrary"_s;
    case Coverage::newDriver:
        return u"newDriver"_s;
    case Coverage::known:
        break;
    }
    return u"known"_s;
}

/// GPUs of NVIDIA on a machine whose clock is stepped by hand.
class Bench {
public:
    explicit Bench(const std::string &runtimeStatus)
    {
        tree.write(card + "/power/runtime_status", runtimeStatus);
        tree.write(card + "/power/control", "auto\n");
        m_gpus.setDevices({{.driver = GPUDriver::nvidia,
                            .address = "0000:01:00.0",
                            .folder = tree.root() + '/' + card}});
    }

    /// One of which the system hides the folder.
    Bench() { m_gpus.setDevices({{.driver = GPUDriver::nvidia}}); }

    const MachineTree tree;

    /// "device, name load watts memory bytes" for each GPU, with its parts' coverage.
    QStringList coverage() const
    {
        QStringList texts;
        for (const GPUCoverage &gpu : m_gpus.coverage()) {
            QString text = gpu.device + u", "_s + gpu.name;
            for (const Coverage part : {gpu.load, gpu.watts, gpu.memory})
                text += u' ' + nameOf(part);
            if (gpu.memoryTotal)
                text += u" %1"_s.arg(*gpu.memoryTotal);
            if (gpu.usesSystemMemory)
                text += u" of the machine"_s;
            texts << text;
        }
        return texts;
    }

    std::vector<GPUReading> tick(double seconds = 1)
    {
        m_now = m_now + seconds;
        std::vector<GPUReading> readings;
        m_gpus.appendReadings(readings, m_now, asksForProcesses);
        return readings;
    }

    void rest() { m_gpus.rest(); }

    bool asksForProcesses = false;

    GPUAccess access() const
    {
        std::vector<GPUAccess> gpus;
        m_gpus.appendAccess(gpus);
        return gpus.at(0);
    }

    /// Ticks until the library has given a reading. A reading is asked for at one tick and there at
    /// the next, as soon as the other thread had its turn.
    bool waitForReading()
    {
        return QTest::qWaitFor([this] { return !tick(0.2).empty(); }, patience);
    }

private:
    std::atomic<double> m_now = 1000;
    NvidiaGPUs m_gpus{STAND_IN_NVML, [this] { return m_now.load(); }, tree.root()};
};

} // namespace

class TestNvidiaGPUs : public QObject {
    Q_OBJECT

private slots:
    void aSleepingGPUOpensNoLibrary();
    void readsGPUs();
    void anIdleGPUHasItsLibraryClosed();
    void aGPUThatFallsAsleepHasItsLibraryClosed();
    void tellsWhatEachGPUTells();
    void aGPUThatFallsAsleepKeepsNameAndMemory();
    void tellsOfMemoryThatIsTheMachines();
    void tellsOfGPUsThatTheSystemHides();
    void tellsOfAnUpdatedDriver();
    void handsOverProcessesWhenAsked();
    void keepsProcessesWhileLeftAlone();
    void restWithTheLibraryClosed();
    void cannotBeReadWithoutALibraryOrADevice();
};

void TestNvidiaGPUs::aSleepingGPUOpensNoLibrary()
{
    const StandInNvidia nvidia;
    Bench bench("suspended\n");
    AccessWatch files(bench.tree.root() + '/' + card);
    for (int tick = 0; tick < 130; ++tick)
        QVERIFY(bench.tick().empty());
    QCOMPARE(files.touched(), QStringList{u"power/runtime_status"_s});
    QCOMPARE(nvidia.calls("nvmlInit_v2"), 0);
}

void TestNvidiaGPUs::readsGPUs()
{
    const StandInNvidia nvidia;
    nvidia.script("nvmlDeviceGetCount_v2 2\n");
    Bench bench;                   // As in a container that does not see the bus.
    QVERIFY(bench.tick().empty()); // Asked for, not waited for.
    TRY_COMPARE(nvidia.calls("nvmlDeviceGetTotalEnergyConsumption"), 2);
    QVERIFY(bench.waitForReading());
    const auto readings = bench.tick();
    QCOMPARE(readings.size(), std::size_t(2));
    QVERIFY(!readings[0].integrated);
    QVERIFY(readings[0].device != readings[1].device);
    QCOMPARE(readings[0].busyFraction, std::optional(0.4));
    QCOMPARE(readings[0].state, std::string("P2"));
    QCOMPARE(readings[0].watts, std::optional(75.5));
    QCOMPARE(readings[0].microjoules, std::optional<std::uint64_t>(5'000'000'000));
    QCOMPARE(readings[0].temperatures, std::vector{61.0});
    QCOMPARE(readings[0].megahertz, std::optional(2610.0));
    QCOMPARE(readings[0].memoryUsed, std::optional<std::uint64_t>(9'000'000'000));
    QCOMPARE(readings[0].device, u"nvidia 0000:01:00.0"_s);
}

void TestNvidiaGPUs::anIdleGPUHasItsLibraryClosed()
{
    const StandInNvidia nvidia;
    nvidia.script("nvmlDeviceGetUtilizationRates 0\n");
    Bench bench("active\n");
    bench.tick();
    // A reading a tick, until three of them were idle.
    const auto closed = [&nvidia] { return nvidia.calls("nvmlShutdown") > 0; };
    for (int asked = 1; asked <= 10 && !closed(); ++asked) {
        TRY_VERIFY(closed() || nvidia.calls("nvmlDeviceGetTotalEnergyConsumption") >= asked);
        bench.tick();
    }
    TRY_VERIFY(closed());
    QVERIFY(nvidia.calls("nvmlDeviceGetUtilizationRates") >= 3);
    QCOMPARE(nvidia.calls("nvmlInit_v2"), 1);

    // Nine seconds pass from the decision; some ticks of them may be over already.
    AccessWatch files(bench.tree.root() + '/' + card);
    QVERIFY(QTest::qWaitFor(
        [&] {
            bench.tick();
            return !files.touched().isEmpty();
        },
        patience));
    QVERIFY(QTest::qWaitFor([&] { return nvidia.calls("nvmlInit_v2") == 2; }, patience));
}

void TestNvidiaGPUs::aGPUThatFallsAsleepHasItsLibraryClosed()
{
    const StandInNvidia nvidia;
    Bench bench("active\n");
    QVERIFY(bench.waitForReading());
    bench.tree.write(card + "/power/runtime_status", "suspending\n");
    QVERIFY(bench.tick().empty());
    TRY_COMPARE(nvidia.calls("nvmlShutdown"), 1);
}

void TestNvidiaGPUs::tellsWhatEachGPUTells()
{
    const StandInNvidia nvidia;
    nvidia.script("nvmlDeviceGetPowerUsage fails 4\nnvmlDeviceGetTotalEnergyConsumption fails 4\n"
                  "nvmlDeviceGetUtilizationRates fails 3\n");
    Bench bench("active\n");
    // Awaited: an en dash, no reason.
    QCOMPARE(bench.coverage(),
             QStringList{u"nvidia 0000:01:00.0, NVIDIA GPU 0 known known known"_s});
    QVERIFY(bench.waitForReading());
    QCOMPARE(bench.coverage(),
             QStringList{u"nvidia 0000:01:00.0, NVIDIA GeForce RTX 4090 "
                         "unpublished locked known 24000000000"_s});
}

void TestNvidiaGPUs::aGPUThatFallsAsleepKeepsNameAndMemory()
{
    const StandInNvidia nvidia;
    Bench bench("active\n");
    QVERIFY(bench.waitForReading());
    bench.tree.write(card + "/power/runtime_status", "suspended\n");
    bench.tick();
    QCOMPARE(bench.coverage(),
             QStringList{u"nvidia 0000:01:00.0, NVIDIA GeForce RTX 4090 asleep "
                         "asleep asleep 24000000000"_s});
    bench.tree.write(card + "/power/runtime_status", "active\n");
    bench.tick();
    QCOMPARE(bench.coverage(),
             QStringList{u"nvidia 0000:01:00.0, NVIDIA GeForce RTX 4090 known "
                         "known known 24000000000"_s});
}

void TestNvidiaGPUs::tellsOfMemoryThatIsTheMachines()
{
    const StandInNvidia nvidia;
    nvidia.script("nvmlDeviceGetMemoryInfo_v2 fails 3\nnvmlDeviceGetMemoryInfo fails 3\n");
    Bench bench("active\n");
    bench.tree.write("proc/meminfo", "MemTotal:       125829120 kB\nMemFree: 1 kB\n");
    QVERIFY(bench.waitForReading());
    QCOMPARE(bench.coverage(),
             QStringList{u"nvidia 0000:01:00.0, NVIDIA GeForce RTX 4090 known "
                         "absent known 128849018880 of the machine"_s});
    const auto readings = bench.tick();
    QVERIFY(readings[0].integrated);
    QCOMPARE(readings[0].memoryUsed, std::optional<std::uint64_t>(8'400'000'000));
}

void TestNvidiaGPUs::tellsOfGPUsThatTheSystemHides()
{
    const StandInNvidia nvidia;
    nvidia.script("nvmlDeviceGetCount_v2 2\nnvmlDeviceGetName@1 3090\n");
    Bench bench;
    QCOMPARE(bench.coverage(), QStringList{u"nvidia, NVIDIA GPU 0 known known known"_s});
    QVERIFY(bench.waitForReading());
    QCOMPARE(bench.coverage(),
             (QStringList{u"nvidia 0000:01:00.0, NVIDIA GeForce RTX 4090 known "
                          "known known 24000000000"_s,
                          u"nvidia 0000:02:00.0, NVIDIA GeForce RTX 3090 known "
                          "known known 24000000000"_s}));
}

void TestNvidiaGPUs::tellsOfAnUpdatedDriver()
{
    const StandInNvidia nvidia;
    Bench bench("active\n");
    QVERIFY(bench.waitForReading());
    nvidia.script("nvmlDeviceGetMemoryInfo_v2 fails 18\n");
    const QStringList newDriver = {u"nvidia 0000:01:00.0, NVIDIA GeForce RTX 4090 newDriver "
                                   "newDriver newDriver 24000000000"_s};
    QVERIFY(QTest::qWaitFor(
        [&] {
            bench.tick(1);
            return bench.coverage() == newDriver;
        },
        patience));
    nvidia.script({});
    bench.tick(61);
    QVERIFY(bench.waitForReading());
    QVERIFY(bench.coverage() != newDriver);
}

void TestNvidiaGPUs::handsOverProcessesWhenAsked()
{
    const StandInNvidia nvidia;
    Bench bench("active\n");
    QVERIFY(bench.waitForReading());
    QVERIFY(!bench.access().processes);
    QCOMPARE(bench.access().device, std::string("nvidia 0000:01:00.0"));
    QVERIFY(bench.access().folder.empty());

    bench.asksForProcesses = true;
    QVERIFY(QTest::qWaitFor(
        [&] {
            bench.tick(0.2);
            return bench.access().processes.has_value();
        },
        patience));
    QCOMPARE(bench.access().processes->size(), std::size_t(3));

    bench.tree.write(card + "/power/runtime_status", "suspended\n");
    bench.tick();
    QVERIFY(!bench.access().processes);
    QVERIFY(bench.access().state == GPUAccess::State::asleep);
}

void TestNvidiaGPUs::keepsProcessesWhileLeftAlone()
{
    const StandInNvidia nvidia;
    nvidia.script("nvmlDeviceGetUtilizationRates 0\n");
    Bench bench("active\n");
    bench.asksForProcesses = true;
    QVERIFY(QTest::qWaitFor(
        [&] {
            bench.tick(0.2);
            return bench.access().state == GPUAccess::State::leftAlone;
        },
        patience));
    bench.tick();
    QVERIFY(bench.access().processes);
}

/// Nothing shows its values: the library's memory is given back, until something does.
void TestNvidiaGPUs::restWithTheLibraryClosed()
{
    const StandInNvidia nvidia;
    Bench bench("active\n");
    QVERIFY(bench.waitForReading());
    const QStringList known = bench.coverage();
    bench.rest();
    TRY_COMPARE(nvidia.calls("nvmlShutdown"), 1);
    bench.rest();
    QVERIFY(bench.access().state == GPUAccess::State::leftAlone);
    QCOMPARE(bench.coverage(), known); // It did not go away.
    QCOMPARE(nvidia.calls("nvmlInit_v2"), 1);
    QVERIFY(bench.waitForReading());
    QCOMPARE(nvidia.calls("nvmlInit_v2"), 2);
    QVERIFY(bench.access().state == GPUAccess::State::open);
}

void TestNvidiaGPUs::cannotBeReadWithoutALibraryOrADevice()
{
    const auto clock = [] { return 0.0; };
    const std::vector<GPUDevice> devices = {{.driver = GPUDriver::nvidia}};
    std::vector<GPUReading> readings;
    NvidiaGPUs withoutLibrary({}, clock);
    withoutLibrary.setDevices(devices);
    withoutLibrary.appendReadings(readings, 0);
    QCOMPARE(withoutLibrary.coverage().at(0).load, Coverage::noLibrary);
    const StandInNvidia nvidia;
    NvidiaGPUs withoutDevice(STAND_IN_NVML, clock);
    withoutDevice.appendReadings(readings, 0);
    QVERIFY(withoutDevice.coverage().empty());
    QVERIFY(readings.empty());
    QCOMPARE(nvidia.calls("nvmlInit_v2"), 0);
}

QTEST_GUILESS_MAIN(TestNvidiaGPUs)
#include "tst_NvidiaGPUs.moc"
