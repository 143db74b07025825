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

    std::vector<GPUReading> tick(double seconds = 1)
    {
        m_now = m_now + seconds;
        std::vector<GPUReading> readings;
        m_gpus.appendReadings(readings, m_now);
        return readings;
    }

    /// Ticks until the library has given a reading. A reading is asked for at one tick and there at
    /// the next, as soon as the other thread had its turn.
    bool waitForReading()
    {
        return QTest::qWaitFor([this] { return !tick(0.2).empty(); }, patience);
    }

private:
    std::atomic<double> m_now = 1000;
    NvidiaGPUs m_gpus{STAND_IN_NVML, [this] { return m_now.load(); }};
};

} // namespace

class TestNvidiaGPUs : public QObject {
    Q_OBJECT

private slots:
    void aSleepingGPUOpensNoLibrary();
    void readsGPUs();
    void anIdleGPUHasItsLibraryClosed();
    void aGPUThatFallsAsleepHasItsLibraryClosed();
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

void TestNvidiaGPUs::cannotBeReadWithoutALibraryOrADevice()
{
    const auto clock = [] { return 0.0; };
    const std::vector<GPUDevice> devices = {{.driver = GPUDriver::nvidia}};
    NvidiaGPUs withoutLibrary({}, clock);
    withoutLibrary.setDevices(devices);
    QVERIFY(!withoutLibrary.canBeRead());
    NvidiaGPUs gpus(STAND_IN_NVML, clock);
    QVERIFY(!gpus.canBeRead());
    gpus.setDevices(devices);
    QVERIFY(gpus.canBeRead());
}

QTEST_GUILESS_MAIN(TestNvidiaGPUs)
#include "tst_NvidiaGPUs.moc"
