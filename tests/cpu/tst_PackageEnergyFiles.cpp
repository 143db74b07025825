#include "cpu/PackageEnergyFiles_linux.h"

#include "support/MachineTree.h"

#include <QTest>

using namespace corvane;
using corvane::test::MachineTree;

namespace {

const std::string zones = "sys/devices/virtual/powercap/intel-rapl/";
const std::string mirrors = "sys/devices/virtual/powercap/intel-rapl-mmio/";

} // namespace

class TestPackageEnergyFiles : public QObject {
    Q_OBJECT

private slots:
    void readsPackagesAlone();
    void readsThePartsWhereBothAreCounted_data();
    void readsThePartsWhereBothAreCounted();
    void hasNoReadingWhereItIsRefused();
    void triesAgainEachMinute();
    void findsADriverThatIsLoadedLater();
    void takesTheSecondRegisterOnlyWithoutTheFirst();
    void survivesGarbage();
};

void TestPackageEnergyFiles::readsPackagesAlone()
{
    const MachineTree machine("amd-desktop");
    PackageEnergyFiles energy(machine.root());
    QVERIFY(energy.exist());
    const auto readings = energy.read();
    QCOMPARE(readings.size(), std::size_t(1));
    QCOMPARE(readings[0].zone, std::string("intel-rapl:0"));
    QCOMPARE(readings[0].microjoules, std::uint64_t(41'000'000'000));
    QCOMPARE(readings[0].range, std::uint64_t(65'532'610'987));
}

void TestPackageEnergyFiles::readsThePartsWhereBothAreCounted_data()
{
    using enum EnergyPart;
    using Parts = std::vector<EnergyPart>;
    QTest::addColumn<std::string>("first");
    QTest::addColumn<std::string>("second");
    QTest::addColumn<Parts>("expected");
    const auto row = [](const char *name, const std::string &first, const std::string &second,
                        const Parts &expected) {
        QTest::newRow(name) << first << second << expected;
    };
    row("cores and graphics", "core\n", "uncore\n", {package, cores, graphics});
    row("graphics and cores", "uncore\n", "core\n", {package, cores, graphics});
    row("cores and memory", "core\n", "dram\n", {package});
    row("memory and graphics", "dram\n", "uncore\n", {package});
}

void TestPackageEnergyFiles::readsThePartsWhereBothAreCounted()
{
    QFETCH(std::string, first);
    QFETCH(std::string, second);
    const MachineTree machine;
    int microjoules = 1;
    for (const auto &[zone, name] :
         {std::pair("intel-rapl:0", std::string("package-0\n")), std::pair("intel-rapl:0:0", first),
          std::pair("intel-rapl:0:1", second)}) {
        const std::string folder = std::string("sys/class/powercap/") + zone;
        machine.write(folder + "/name", name);
        machine.write(folder + "/energy_uj", std::to_string(microjoules++) + '\n');
    }
    std::vector<EnergyPart> parts;
    for (const PackageEnergyReading &reading : PackageEnergyFiles(machine.root()).read())
        parts.push_back(reading.part);
    QFETCH(const std::vector<EnergyPart>, expected);
    QVERIFY(parts == expected);
}

void TestPackageEnergyFiles::hasNoReadingWhereItIsRefused()
{
    const MachineTree machine("intel-hybrid-nvidia");
    PackageEnergyFiles energy(machine.root());
    QVERIFY(energy.exist());
    QVERIFY(energy.read().empty());
}

void TestPackageEnergyFiles::triesAgainEachMinute()
{
    const MachineTree machine("intel-hybrid-nvidia");
    double now = 100;
    PackageEnergyFiles energy(machine.root(), [&now] { return now; });
    QVERIFY(energy.read().empty());

    machine.write(zones + "intel-rapl:0/energy_uj", "7000000\n");
    for (now = 101; now < 160; ++now)
        QVERIFY(energy.read().empty()); // Not each tick.
    now = 160;
    QCOMPARE(energy.read().size(), std::size_t(1));

    now = 161;
    machine.write(zones + "intel-rapl:0/energy_uj", "9000000\n");
    const auto readings = energy.read();
    QCOMPARE(readings.size(), std::size_t(1));
    QCOMPARE(readings[0].microjoules, std::uint64_t(9'000'000));
}

void TestPackageEnergyFiles::findsADriverThatIsLoadedLater()
{
    const MachineTree machine;
    double now = 0;
    PackageEnergyFiles energy(machine.root(), [&now] { return now; });
    QVERIFY(!energy.exist());

    machine.write("sys/class/powercap/intel-rapl:0/name", "package-0\n");
    machine.write("sys/class/powercap/intel-rapl:0/energy_uj", "5\n");
    now = 59;
    QVERIFY(energy.read().empty());
    now = 60;
    QCOMPARE(energy.read().size(), std::size_t(1));
    QVERIFY(energy.exist());
}

void TestPackageEnergyFiles::takesTheSecondRegisterOnlyWithoutTheFirst()
{
    const MachineTree machine("intel-hybrid-nvidia");
    machine.write(zones + "intel-rapl:0/energy_uj", "1\n");
    machine.write(mirrors + "intel-rapl-mmio:0/energy_uj", "2\n");
    QCOMPARE(PackageEnergyFiles(machine.root()).read()[0].zone, std::string("intel-rapl:0"));

    machine.remove("sys/class/powercap/intel-rapl:0");
    QCOMPARE(PackageEnergyFiles(machine.root()).read()[0].zone, std::string("intel-rapl-mmio:0"));
}

void TestPackageEnergyFiles::survivesGarbage()
{
    const MachineTree machine("amd-desktop");
    machine.write(zones + "intel-rapl:0/max_energy_range_uj", "wide\n");
    PackageEnergyFiles energy(machine.root());
    QCOMPARE(energy.read()[0].range, std::uint64_t(0));
    machine.write(zones + "intel-rapl:0/energy_uj", "-17\n");
    QVERIFY(energy.read().empty());
}

QTEST_GUILESS_MAIN(TestPackageEnergyFiles)
#include "tst_PackageEnergyFiles.moc"
