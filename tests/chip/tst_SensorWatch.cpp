#include "chip/SensorWatch_linux.h"

#include "support/FaultyCalls.h"
#include "support/MachineTree.h"
#include "support/Waiting.h"

#include <QTest>

using namespace corvane;
using namespace corvane::test;
using FaultyCalls::Call;

namespace {

constexpr std::chrono::minutes untilRead(1);
constexpr std::chrono::milliseconds atOnce(0);

/// The file is one that is read at the start.
void startsWhileAFileHangs(const MachineTree &tree, const std::string &file)
{
    FaultyCalls::stall(Call::read, file);
    SensorWatch watch(tree.root());
    QVERIFY(!watch.read(500, {}, atOnce));
    FaultyCalls::waitForStalled();
    QVERIFY(!watch.read(501, {}, untilRead));
    FaultyCalls::letGo();
    TRY_VERIFY(watch.read(501, {}, untilRead));
}

} // namespace

/// The files of drivers and sensors, which may never answer.
class TestSensorWatch : public QObject {
    Q_OBJECT

private slots:
    void cleanup() { FaultyCalls::clear(); }
    void readsWhatDriversAnswer();
    void readsAtOnceWithoutDrivers();
    void findsDriversThatAreLoadedLater();
    void aFileThatHangsDelaysNothing_data();
    void aFileThatHangsDelaysNothing();
    void aFileThatHangsAtTheStartDelaysNothing_data();
    void aFileThatHangsAtTheStartDelaysNothing();
    void theOnlyDriverOfAMachineDelaysNothing_data();
    void theOnlyDriverOfAMachineDelaysNothing();
};

void TestSensorWatch::readsWhatDriversAnswer()
{
    const MachineTree tree("amd-desktop");
    SensorWatch watch(tree.root());
    const auto reading = watch.read(500, {}, untilRead);
    QVERIFY(reading);
    QCOMPARE(reading->seconds, 500.0);
    QCOMPARE(reading->clusters->size(), std::size_t(1));
    QVERIFY(!reading->cpus.at(0).policyTimes.at(0).empty());
    QVERIFY(reading->countsPackages && !reading->packages.empty());
    QVERIFY(!reading->temperatures.empty());
}

/// Without waiting for a thread, of which there is none.
void TestSensorWatch::readsAtOnceWithoutDrivers()
{
    const MachineTree tree("kernel-without-psi");
    SensorWatch watch(tree.root());
    for (double now = 1; now < 4; ++now) {
        const auto reading = watch.read(now, {}, atOnce);
        QVERIFY(reading);
        QCOMPARE(reading->seconds, now);
        QVERIFY(reading->temperatures.empty() && !reading->countsPackages);
    }
}

void TestSensorWatch::findsDriversThatAreLoadedLater()
{
    const MachineTree tree;
    SensorWatch watch(tree.root());
    QVERIFY(watch.read(0, {}, atOnce)->temperatures.empty());
    tree.write("sys/class/hwmon/hwmon0/name", "k10temp\n");
    tree.write("sys/class/hwmon/hwmon0/temp1_label", "Tctl\n");
    tree.write("sys/class/hwmon/hwmon0/temp1_input", "50000\n");
    QVERIFY(watch.read(59, {}, untilRead)->temperatures.empty());
    const auto reading = watch.read(60, {}, untilRead);
    QVERIFY(reading);
    QCOMPARE(reading->temperatures.size(), std::size_t(1));
}

void TestSensorWatch::aFileThatHangsDelaysNothing_data()
{
    QTest::addColumn<std::string>("machine");
    QTest::addColumn<std::string>("file");
    QTest::newRow("a temperature") << std::string("amd-desktop") << std::string("/temp2_input");
    QTest::newRow("times in states") << std::string("amd-desktop") << std::string("/time_in_state");
    QTest::newRow("energy") << std::string("amd-desktop") << std::string("/energy_uj");
    QTest::newRow("a thermal zone")
        << std::string("nvidia-gb10") << std::string("/thermal_zone0/temp");
}

void TestSensorWatch::aFileThatHangsDelaysNothing()
{
    QFETCH(const std::string, machine);
    QFETCH(const std::string, file);
    const MachineTree tree(machine);
    SensorWatch watch(tree.root());
    const auto before = watch.read(500, {}, untilRead);
    QVERIFY(before);
    FaultyCalls::stall(Call::read, file);
    QVERIFY(watch.read(501, {}, atOnce));
    FaultyCalls::waitForStalled();
    QCOMPARE(watch.read(502, {}, untilRead), before); // Waits for nothing: an answer is due.
    QCOMPARE(watch.read(502.5, {}, untilRead), before);
    QVERIFY(!watch.read(502.6, {}, untilRead));
    FaultyCalls::letGo();
    TRY_VERIFY(watch.read(503, {}, untilRead));
}

void TestSensorWatch::aFileThatHangsAtTheStartDelaysNothing_data()
{
    QTest::addColumn<std::string>("machine");
    QTest::addColumn<std::string>("file");
    QTest::newRow("the CPUs of a frequency")
        << std::string("amd-desktop") << std::string("/related_cpus");
    QTest::newRow("the highest frequency")
        << std::string("amd-desktop") << std::string("/cpuinfo_max_freq");
    QTest::newRow("the name of a sensor") << std::string("amd-desktop") << std::string("/name");
    QTest::newRow("a battery") << std::string("amd-apu-npu-laptop") << std::string("/power_now");
}

void TestSensorWatch::aFileThatHangsAtTheStartDelaysNothing()
{
    QFETCH(const std::string, machine);
    QFETCH(const std::string, file);
    startsWhileAFileHangs(MachineTree(machine), file);
}

void TestSensorWatch::theOnlyDriverOfAMachineDelaysNothing_data()
{
    QTest::addColumn<std::string>("file");
    QTest::newRow("frequencies") << std::string(
        "sys/devices/system/cpu/cpufreq/policy0/related_cpus");
    QTest::newRow("energy") << std::string("sys/class/powercap/intel-rapl:0/name");
    QTest::newRow("a monitor") << std::string("sys/class/hwmon/hwmon0/name");
    QTest::newRow("a thermal zone") << std::string("sys/class/thermal/thermal_zone0/type");
    QTest::newRow("a battery") << std::string("sys/class/power_supply/BAT0/type");
}

void TestSensorWatch::theOnlyDriverOfAMachineDelaysNothing()
{
    QFETCH(const std::string, file);
    const MachineTree tree;
    tree.write(file, "0\n");
    startsWhileAFileHangs(tree, file);
}

QTEST_GUILESS_MAIN(TestSensorWatch)
#include "tst_SensorWatch.moc"
