#include "drivers/NPUFiles_linux.h"

#include "support/MachineTree.h"

#include <QTest>

using namespace corvane;
using corvane::test::MachineTree;
using namespace Qt::StringLiterals;

namespace {

const std::string slot = "sys/devices/pci0000:00/0000:00:0b.0/";

void addNPU(const MachineTree &tree, const std::string &driver)
{
    tree.link(slot + "driver", "sys/bus/pci/drivers/" + driver);
    tree.link("sys/class/accel/accel0/device", slot);
}

/// "0.25, 0.5 W, 1800 MHz, 3 bytes; known unpublished".
QString text(const NPUReading &reading)
{
    const auto number = [](const auto &value) {
        return value ? QString::number(double(*value)) : u"–"_s;
    };
    const auto coverage = [](Coverage of) {
        return of == Coverage::known ? u"known"_s : u"unpublished"_s;
    };
    return number(reading.metrics.activeFraction) + u", "_s + number(reading.metrics.watts)
        + u" W, "_s + number(reading.metrics.megahertz) + u" MHz, "_s
        + number(reading.metrics.memoryUsed) + u" bytes; "_s + coverage(reading.load) + u' '
        + coverage(reading.watts);
}

const QString nothing = u"–, – W, – MHz, – bytes; unpublished unpublished"_s;

} // namespace

class TestNPUFiles : public QObject {
    Q_OBJECT

private slots:
    void findsTheNPU_data();
    void findsTheNPU();
    void readsIntels_data();
    void readsIntels();
    void restsAtZeroWhileItIsSuspended();
    void takesAMDsFromItsAPU();
};

void TestNPUFiles::findsTheNPU_data()
{
    QTest::addColumn<std::string>("driver");
    QTest::addColumn<int>("expected");
    QTest::newRow("Intel's") << std::string("intel_vpu") << int(NPUDriver::intel);
    QTest::newRow("AMD's") << std::string("amdxdna") << int(NPUDriver::amd);
    QTest::newRow("another") << std::string("rocket") << int(NPUDriver::other);
}

void TestNPUFiles::findsTheNPU()
{
    QFETCH(std::string, driver);
    const MachineTree tree;
    QVERIFY(!findNPUDevice(tree.root()));
    addNPU(tree, driver);
    const std::optional<NPUDevice> found = findNPUDevice(tree.root());
    QVERIFY(found);
    QTEST(int(found->driver), "expected");
    tree.remove(slot + "driver"); // It was unloaded.
    QVERIFY(!findNPUDevice(tree.root()));
}

void TestNPUFiles::readsIntels_data()
{
    QTest::addColumn<std::string>("before");
    QTest::addColumn<std::string>("now");
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QString>("expected");
    const QString known = u", – W, 950 MHz, 4096 bytes; known unpublished"_s;
    const auto row = [](const char *name, const std::string &before, const std::string &now,
                        double seconds, const QString &expected) {
        QTest::newRow(name) << before << now << seconds << expected;
    };
    row("the share of the second", "1000000\n", "1250000\n", 1, u"0.25"_s + known);
    row("it rested", "1000000\n", "1000000\n", 1, u"0"_s + known);
    row("at most all of it", "1000000\n", "9000000\n", 1, u"1"_s + known);
    row("the driver started again", "1000000\n", "5\n", 1, u"–"_s + known);
    row("the machine slept in between", "1000000\n", "1250000\n", 600, u"–"_s + known);
    row("no time went by", "1000000\n", "1250000\n", 0, u"–"_s + known);
    row("no number now", "1000000\n", "busy\n", 1, u"–"_s + known);
    row("an empty file", "1000000\n", "", 1, u"–"_s + known);
    row("more than 64 bits", "1000000\n", "18446744073709551616\n", 1, u"–"_s + known);
    row("a negative number", "-1\n", "-2\n", 1,
        u"–, – W, 950 MHz, 4096 bytes; unpublished unpublished"_s);
}

void TestNPUFiles::readsIntels()
{
    QFETCH(std::string, before);
    QFETCH(std::string, now);
    QFETCH(double, seconds);
    const MachineTree tree;
    addNPU(tree, "intel_vpu");
    tree.write(slot + "npu_memory_utilization", "4096\n");
    tree.write(slot + "npu_current_frequency_mhz", "950\n");
    tree.write(slot + "npu_busy_time_us", before);
    NPUFiles files(findNPUDevice(tree.root()).value());
    QVERIFY(!files.read(nullptr, 100).metrics.activeFraction); // There is no earlier counter.
    tree.write(slot + "npu_busy_time_us", now);
    QTEST(text(files.read(nullptr, 100 + seconds)), "expected");
}

/// It suspends within a tenth of a second, so that "suspended" is what rest looks like, and its
/// counter can be read then without waking it.
void TestNPUFiles::restsAtZeroWhileItIsSuspended()
{
    const MachineTree tree;
    addNPU(tree, "intel_vpu");
    tree.write(slot + "power/runtime_status", "suspended\n");
    tree.write(slot + "npu_busy_time_us", "1000000\n");
    tree.write(slot + "npu_current_frequency_mhz", "0\n"); // Of a clock that stands still.
    NPUFiles files(findNPUDevice(tree.root()).value());
    files.read(nullptr, 100);
    QCOMPARE(text(files.read(nullptr, 101)), u"0, – W, – MHz, – bytes; known unpublished"_s);
    tree.write(slot + "npu_busy_time_us", "1500000\n"); // It worked, and is suspended again.
    QCOMPARE(text(files.read(nullptr, 102)), u"0.5, – W, – MHz, – bytes; known unpublished"_s);
}

void TestNPUFiles::takesAMDsFromItsAPU()
{
    const MachineTree tree;
    addNPU(tree, "amdxdna");
    NPUFiles files(findNPUDevice(tree.root()).value());
    QCOMPARE(text(files.read(nullptr, 100)), nothing);
    const APUMetrics apu{.npuFraction = 0.17, .npuWatts = 1.35, .npuMHz = 1800};
    QCOMPARE(text(files.read(&apu, 101)), u"0.17, 1.35 W, 1800 MHz, – bytes; known known"_s);
    // Firmware that fails now and then does not make the card come and go.
    QCOMPARE(text(files.read(nullptr, 102)), u"–, – W, – MHz, – bytes; known known"_s);
    QCOMPARE(text(files.read(nullptr, 112)), nothing);
}

QTEST_GUILESS_MAIN(TestNPUFiles)
#include "tst_NPUFiles.moc"
