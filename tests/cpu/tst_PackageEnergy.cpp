#include "cpu/PackageEnergy.h"

#include "support/MachineTree.h"

#include <QTest>

using namespace corvane;
using corvane::test::MachineTree;

using Joules = std::optional<double>;

Q_DECLARE_METATYPE(Joules)

namespace {

const std::string zones = "sys/devices/virtual/powercap/intel-rapl/";
const std::string mirrors = "sys/devices/virtual/powercap/intel-rapl-mmio/";

} // namespace

class TestPackageEnergy : public QObject {
    Q_OBJECT

private slots:
    void takesDifferences_data();
    void takesDifferences();
    void tellsPackages_data();
    void tellsPackages();
    void readsPackagesAlone();
    void isNothingWhereItIsRefused();
    void triesAgainEachMinute();
    void findsTheDriverThatComesLate();
    void takesTheSecondRegisterOnlyWithoutTheFirst();
    void survivesGarbage();
};

void TestPackageEnergy::takesDifferences_data()
{
    QTest::addColumn<quint64>("before");
    QTest::addColumn<quint64>("now");
    QTest::addColumn<quint64>("range");
    QTest::addColumn<double>("seconds");
    QTest::addColumn<Joules>("joules");
    const quint64 range = 65'532'610'987;
    const quint64 nearEnd = range - 10'000'000;
    QTest::newRow("a second at 12 W")
        << quint64(5'000'000) << quint64(17'000'000) << range << 1.0 << Joules(12);
    QTest::newRow("no time, no energy") << quint64(5) << quint64(5) << range << 0.0 << Joules(0);
    QTest::newRow("the counter wrapped")
        << nearEnd << quint64(20'000'000) << range << 1.0 << Joules(30);
    QTest::newRow("it wrapped and the range is not known")
        << nearEnd << quint64(20'000'000) << quint64(0) << 1.0 << Joules();
    QTest::newRow("it restarted in sleep")
        << quint64(30'000'000'000) << quint64(4'000'000) << range << 1.0 << Joules();
    QTest::newRow("after a long gap it may have wrapped twice")
        << nearEnd << quint64(20'000'000) << range << 3.1 << Joules();
    QTest::newRow("three ticks are no long gap")
        << nearEnd << quint64(20'000'000) << range << 3.0 << Joules(30);
    QTest::newRow("forwards over a long gap")
        << quint64(0) << quint64(60'000'000) << range << 60.0 << Joules(60);
}

void TestPackageEnergy::takesDifferences()
{
    QFETCH(quint64, before);
    QFETCH(quint64, now);
    QFETCH(quint64, range);
    QFETCH(double, seconds);
    QTEST(packageJoules({"zone", before, range}, {"zone", now, range}, seconds), "joules");
}

void TestPackageEnergy::tellsPackages_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("package");
    const auto row = [](const char *zone, const char *name, bool package) {
        return std::tuple(QByteArray(zone), QByteArray(name), package);
    };
    const auto add = [](const char *title, const auto &values) {
        QTest::newRow(title) << std::get<0>(values) << std::get<1>(values) << std::get<2>(values);
    };
    add("a package", row("intel-rapl:0", "package-0\n", true));
    add("a die of a package", row("intel-rapl:2", "package-0-die-1\n", true));
    add("the cores inside", row("intel-rapl:0:0", "core\n", false));
    add("a child that is called a package", row("intel-rapl:0:0", "package-0\n", false));
    add("the whole platform", row("intel-rapl:1", "psys\n", false));
    add("the same package through another register",
        row("intel-rapl-mmio:0", "package-0\n", false));
    add("the control type itself", row("intel-rapl", "package-0\n", false));
    add("another control type", row("dtpm:0", "package-0\n", false));
}

void TestPackageEnergy::tellsPackages()
{
    QFETCH(QByteArray, zone);
    QFETCH(QByteArray, name);
    QTEST(isPackageZone(zone.toStdString(), name.toStdString()), "package");
}

void TestPackageEnergy::readsPackagesAlone()
{
    const MachineTree machine("amd-desktop");
    PackageEnergy energy(machine.root());
    QVERIFY(energy.exists());
    const auto readings = energy.read();
    QCOMPARE(readings.size(), std::size_t(1));
    QCOMPARE(readings[0].zone, std::string("intel-rapl:0"));
    QCOMPARE(readings[0].microjoules, std::uint64_t(41'000'000'000));
    QCOMPARE(readings[0].range, std::uint64_t(65'532'610'987));
}

void TestPackageEnergy::isNothingWhereItIsRefused()
{
    const MachineTree machine("intel-hybrid-nvidia");
    PackageEnergy energy(machine.root());
    QVERIFY(energy.exists());
    QVERIFY(energy.read().empty());
}

void TestPackageEnergy::triesAgainEachMinute()
{
    const MachineTree machine("intel-hybrid-nvidia");
    double now = 100;
    PackageEnergy energy(machine.root(), [&now] { return now; });
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

void TestPackageEnergy::findsTheDriverThatComesLate()
{
    const MachineTree machine;
    double now = 0;
    PackageEnergy energy(machine.root(), [&now] { return now; });
    QVERIFY(!energy.exists());

    machine.write("sys/class/powercap/intel-rapl:0/name", "package-0\n");
    machine.write("sys/class/powercap/intel-rapl:0/energy_uj", "5\n");
    now = 59;
    QVERIFY(energy.read().empty());
    now = 60;
    QCOMPARE(energy.read().size(), std::size_t(1));
    QVERIFY(energy.exists());
}

void TestPackageEnergy::takesTheSecondRegisterOnlyWithoutTheFirst()
{
    const MachineTree machine("intel-hybrid-nvidia");
    machine.write(zones + "intel-rapl:0/energy_uj", "1\n");
    machine.write(mirrors + "intel-rapl-mmio:0/energy_uj", "2\n");
    QCOMPARE(PackageEnergy(machine.root()).read()[0].zone, std::string("intel-rapl:0"));

    machine.remove("sys/class/powercap/intel-rapl:0");
    QCOMPARE(PackageEnergy(machine.root()).read()[0].zone, std::string("intel-rapl-mmio:0"));
}

void TestPackageEnergy::survivesGarbage()
{
    const MachineTree machine("amd-desktop");
    machine.write(zones + "intel-rapl:0/max_energy_range_uj", "wide\n");
    PackageEnergy energy(machine.root());
    QCOMPARE(energy.read()[0].range, std::uint64_t(0));
    machine.write(zones + "intel-rapl:0/energy_uj", "-17\n");
    QVERIFY(energy.read().empty());
}

QTEST_GUILESS_MAIN(TestPackageEnergy)
#include "tst_PackageEnergy.moc"
