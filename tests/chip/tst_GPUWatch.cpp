#include "chip/GPUWatch_linux.h"

#include "gpu/StandInNvidia.h"
#include "support/AccessWatch.h"
#include "support/MachineTree.h"
#include "support/Waiting.h"

#include <QTest>

#include <atomic>

using namespace corvane;
using corvane::test::AccessWatch;
using corvane::test::MachineTree;
using corvane::test::StandInNvidia;

using namespace Qt::StringLiterals;

namespace {

const std::string amdCard =
    "sys/devices/pci0000:00/0000:00:03.1/0000:09:00.0/0000:0a:00.0/0000:0b:00.0";
const std::string nvidiaCard = "sys/devices/pci0000:00/0000:00:01.0/0000:01:00.0";

/// For the driver's files of a tick, so that each reading is of its own tick.
constexpr ReaderPatience patience = {.first = std::chrono::minutes(1),
                                     .later = std::chrono::minutes(1)};

/// A machine and a watch over it, whose clock is stepped by a second a tick.
class Bench {
public:
    explicit Bench(const std::string &machine, std::string library = {})
        : tree(machine),
          m_library(std::move(library))
    {
    }

    MachineTree tree;

    /// Made at the first tick, so that a test may change the machine before.
    std::vector<GPUReading> tick()
    {
        if (!m_watch)
            m_watch = std::make_unique<GPUWatch>(
                tree.root(), m_library, [this] { return m_now.load(); }, m_handOver, patience);
        m_now = m_now + 1;
        return m_watch->read();
    }

    GPUHandOver &handOver() { return *m_handOver; }
    double now() const { return m_now; }

    /// What others may know of the GPUs.
    std::vector<GPUAccess> access() const { return m_handOver->ask(m_now); }

    std::size_t countAfter(int ticks)
    {
        for (int done = 1; done < ticks; ++done)
            tick();
        return tick().size();
    }

    /// In the same second.
    std::vector<GPUReading> readAgain() { return m_watch->read(); }

private:
    std::string m_library;
    std::atomic<double> m_now = 1000;
    std::shared_ptr<GPUHandOver> m_handOver = std::make_shared<GPUHandOver>();
    std::unique_ptr<GPUWatch> m_watch = {};
};

} // namespace

class TestGPUWatch : public QObject {
    Q_OBJECT

private slots:
    void aSleepingGPUIsNotTouched();
    void readsWhatIsAwake();
    void anIdleDiscreteGPUIsLeftAloneAndTriedAgain();
    void aCardIsLeftAloneByItsIdleTime();
    void aWorkingGPUIsReadEachTick();
    void aGPUThatNeverSleepsIsReadEachTick_data();
    void aGPUThatNeverSleepsIsReadEachTick();
    void aGPUThatNeverSleptMayBeAllowedTo();
    void anIntegratedGPUIsReadEachTick();
    void aGPUThatCameAwakeIsRead();
    void aGPUThatIsPluggedInIsFound();
    void readsNvidiaGPUsBesideOthers();
    void leavesTheLibraryClosedWhileNothingIsShown();
    void tellsOthersWhatTheyMayTouch();
    void addsUpTheMemoryOfIntelsCards();
};

void TestGPUWatch::aSleepingGPUIsNotTouched()
{
    Bench bench("amd-desktop");
    bench.tree.write(amdCard + "/power/runtime_status", "suspended\n");
    AccessWatch files(bench.tree.root() + '/' + amdCard);
    for (int tick = 0; tick < 130; ++tick) // Over two searches for devices.
        QVERIFY(bench.tick().empty());
    // Its numbers in the list of names are kept by the kernel, not by the card.
    const QStringList harmless = {u"device"_s, u"power/runtime_status"_s, u"vendor"_s};
    QCOMPARE(files.touched(), harmless);

    // The check can fail: awake, its files are read.
    bench.tree.write(amdCard + "/power/runtime_status", "active\n");
    files.touched();
    QCOMPARE(bench.tick().size(), std::size_t(1));
    QVERIFY(files.touched().contains(u"gpu_busy_percent"_s));
}

void TestGPUWatch::readsWhatIsAwake()
{
    Bench bench("amd-desktop");
    const auto readings = bench.tick();
    QCOMPARE(readings.size(), std::size_t(1));
    QCOMPARE(readings[0].busyFraction, std::optional(0.64));
    QCOMPARE(readings[0].seconds, 1001.0);
}

void TestGPUWatch::anIdleDiscreteGPUIsLeftAloneAndTriedAgain()
{
    Bench bench("amd-desktop");
    bench.tree.write(amdCard + "/gpu_busy_percent", "0\n");
    AccessWatch files(bench.tree.root() + '/' + amdCard);
    for (int tick = 1; tick <= 3; ++tick)
        QCOMPARE(bench.tick().size(), std::size_t(1));
    files.touched();

    // Its countdown is 5 s: 8 s after the last reading it is tried again, and not before.
    for (int tick = 1; tick <= 7; ++tick)
        QVERIFY(bench.tick().empty());
    QCOMPARE(files.touched(), QStringList{});
    QCOMPARE(bench.tick().size(), std::size_t(1)); // Still awake and idle: one reading.
    for (int tick = 1; tick <= 7; ++tick)
        QVERIFY(bench.tick().empty());

    bench.tree.write(amdCard + "/gpu_busy_percent", "90\n");
    for (int tick = 1; tick <= 10; ++tick)
        QCOMPARE(bench.tick().size(), std::size_t(1)); // It works: read as before.

    bench.tree.write(amdCard + "/gpu_busy_percent", "0\n");
    QCOMPARE(bench.countAfter(3), std::size_t(1));
    QVERIFY(bench.tick().empty());
    bench.tree.write(amdCard + "/power/runtime_status", "suspended\n");
    files.touched();
    for (int tick = 1; tick <= 20; ++tick)
        QVERIFY(bench.tick().empty()); // It fell asleep, and stays so.
    QCOMPARE(files.touched(), QStringList{u"power/runtime_status"_s});
}

void TestGPUWatch::aCardIsLeftAloneByItsIdleTime()
{
    const std::string card = "sys/devices/pci0000:00/0000:03:00.0";
    Bench bench("virtual-machine-chip");
    bench.tree.link(card + "/driver", "sys/bus/pci/drivers/xe");
    bench.tree.link("sys/class/drm/card0/device", card);
    bench.tree.write(card + "/power/runtime_status", "active\n");
    bench.tree.write(card + "/power/control", "auto\n");
    bench.tree.write(card + "/power/autosuspend_delay_ms", "1000\n");
    int idleMilliseconds = 5000;
    const auto readAfter = [&](int idle) {
        idleMilliseconds += idle;
        bench.tree.write(card + "/tile0/gt0/gtidle/idle_residency_ms",
                         std::to_string(idleMilliseconds) + '\n');
        return !bench.tick().empty();
    };
    QVERIFY(readAfter(1000)); // Without an earlier reading it counts as busy.
    for (const int idle : {1000, 995, 500, 1000, 1000, 1000})
        QVERIFY(readAfter(idle));
    for (int tick = 1; tick <= 3; ++tick)
        QVERIFY(!readAfter(1000)); // For 4 s after the third idle second.
    QVERIFY(readAfter(1000));      // Idle for all that time.
    QVERIFY(!readAfter(1000));
}

void TestGPUWatch::aWorkingGPUIsReadEachTick()
{
    Bench bench("amd-desktop");
    for (int tick = 0; tick < 30; ++tick)
        QCOMPARE(bench.tick().size(), std::size_t(1));
}

void TestGPUWatch::aGPUThatNeverSleepsIsReadEachTick_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("kept on") << QByteArray("control") << QByteArray("on\n");
    QTest::newRow("no countdown") << QByteArray("autosuspend_delay_ms") << QByteArray("-1\n");
    QTest::newRow("cannot sleep") << QByteArray("runtime_status") << QByteArray("unsupported\n");
}

void TestGPUWatch::aGPUThatNeverSleepsIsReadEachTick()
{
    QFETCH(QByteArray, file);
    QFETCH(QByteArray, text);
    Bench bench("amd-desktop");
    bench.tree.write(amdCard + "/gpu_busy_percent", "0\n");
    bench.tree.write(amdCard + "/power/" + file.toStdString(), text.toStdString());
    for (int tick = 0; tick < 30; ++tick)
        QCOMPARE(bench.tick().size(), std::size_t(1));
}

void TestGPUWatch::aGPUThatNeverSleptMayBeAllowedTo()
{
    Bench bench("amd-desktop");
    bench.tree.write(amdCard + "/gpu_busy_percent", "0\n");
    bench.tree.write(amdCard + "/power/control", "on\n");
    AccessWatch files(bench.tree.root() + '/' + amdCard);
    QCOMPARE(bench.countAfter(3),
             std::size_t(1)); // Idle for long enough: looked up whether it may sleep.
    QVERIFY(files.touched().contains(u"power/control"_s));

    bench.tree.write(amdCard + "/power/control", "auto\n");
    files.touched();
    for (int tick = 1; tick < 60; ++tick)
        QCOMPARE(bench.tick().size(), std::size_t(1));
    QVERIFY(!files.touched().contains(u"power/control"_s));
    QCOMPARE(bench.tick().size(), std::size_t(1)); // A minute later it is looked up again.
    QVERIFY(files.touched().contains(u"power/control"_s));
    QVERIFY(bench.tick().empty());
}

void TestGPUWatch::anIntegratedGPUIsReadEachTick()
{
    Bench bench("amd-apu-laptop");
    bench.tree.write("sys/devices/pci0000:00/0000:00:08.1/0000:c1:00.0/gpu_busy_percent", "0\n");
    for (int tick = 0; tick < 30; ++tick)
        QCOMPARE(bench.tick().size(), std::size_t(1));
}

void TestGPUWatch::aGPUThatCameAwakeIsRead()
{
    Bench bench("amd-desktop");
    bench.tree.write(amdCard + "/power/runtime_status", "suspended\n");
    QVERIFY(bench.tick().empty());
    bench.tree.write(amdCard + "/power/runtime_status", "active\n");
    QCOMPARE(bench.tick().size(), std::size_t(1));
}

void TestGPUWatch::aGPUThatIsPluggedInIsFound()
{
    Bench bench("virtual-machine-chip");
    QVERIFY(bench.tick().empty());
    bench.tree.write(amdCard + "/gpu_busy_percent", "5\n");
    bench.tree.link(amdCard + "/driver", "sys/bus/pci/drivers/amdgpu");
    bench.tree.link("sys/class/drm/card0/device", amdCard);
    QCOMPARE(bench.countAfter(58), std::size_t(0)); // Searched for once a minute.
    QCOMPARE(bench.countAfter(1), std::size_t(1));
    bench.tree.remove("sys/class/drm/card0");
    QVERIFY(bench.countAfter(61) == 0);
}

void TestGPUWatch::readsNvidiaGPUsBesideOthers()
{
    const StandInNvidia nvidia;
    Bench bench("intel-hybrid-nvidia", STAND_IN_NVML);
    bench.tree.write(nvidiaCard + "/power/runtime_status", "active\n");
    QCOMPARE(bench.tick().size(), std::size_t(1)); // Asked for, not waited for.
    TRY_COMPARE(bench.readAgain().size(), std::size_t(2));
    bench.tree.write(nvidiaCard + "/power/runtime_status", "suspended\n");
    QCOMPARE(bench.tick().size(), std::size_t(1));
}

void TestGPUWatch::leavesTheLibraryClosedWhileNothingIsShown()
{
    const StandInNvidia nvidia;
    Bench bench("intel-hybrid-nvidia", STAND_IN_NVML);
    bench.tree.write(nvidiaCard + "/power/runtime_status", "active\n");
    bench.handOver().setShown(false);
    QCOMPARE(bench.countAfter(5), std::size_t(1)); // The other GPU takes no library.
    QCOMPARE(nvidia.calls("nvmlInit_v2"), 0);
    bench.handOver().setShown(true);
    bench.tick();
    TRY_COMPARE(bench.readAgain().size(), std::size_t(2));
    bench.handOver().setShown(false);
    QCOMPARE(bench.tick().size(), std::size_t(1));
    TRY_COMPARE(nvidia.calls("nvmlShutdown"), 1);
}

void TestGPUWatch::tellsOthersWhatTheyMayTouch()
{
    using State = GPUAccess::State;
    Bench bench("amd-desktop");
    bench.tree.write(amdCard + "/power/runtime_status", "active\n");
    bench.tree.write(amdCard + "/power/control", "auto\n");
    bench.tree.write(amdCard + "/gpu_busy_percent", "0\n");
    bench.tick();
    QCOMPARE(bench.access().size(), std::size_t(1));
    QCOMPARE(bench.access()[0].device, bench.tree.root() + '/' + amdCard);
    QCOMPARE(bench.access()[0].address, std::string("0000:0b:00.0"));
    QVERIFY(bench.access()[0].state == State::open);
    bench.tick();
    bench.tick();
    QVERIFY(bench.access()[0].state == State::leftAlone);
    bench.tree.write(amdCard + "/power/runtime_status", "suspended\n");
    for (int tick = 0; tick < 60; ++tick)
        bench.tick();
    QVERIFY(bench.access()[0].state == State::asleep);
}

void TestGPUWatch::addsUpTheMemoryOfIntelsCards()
{
    Bench bench("intel-arc-desktop");
    auto readings = bench.tick();
    QCOMPARE(readings.size(), std::size_t(1));
    QVERIFY(!readings[0].memoryUsed);
    bench.handOver().setHeldBytes({{readings[0].device.toStdString(), 5'000'000}}, bench.now());
    readings = bench.tick();
    QCOMPARE(readings[0].memoryUsed, std::optional<std::uint64_t>(5'000'000));
    QVERIFY(readings[0].memoryIsLowerBound);
    bench.countAfter(10);
    QVERIFY(!bench.tick()[0].memoryUsed); // Nobody adds it up any more.
}

QTEST_GUILESS_MAIN(TestGPUWatch)
#include "tst_GPUWatch.moc"
