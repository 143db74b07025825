#include "chip/SystemPowerWatch_linux.h"

#include "support/MachineTree.h"

#include <QTest>

using namespace corvane;
using corvane::test::MachineTree;
using namespace Qt::StringLiterals;

namespace {

/// A machine whose clock is stepped.
struct Machine {
    MachineTree tree = {};
    double now = 100;
    SystemPowerWatch watch{tree.root(), [this] { return now; }};

    /// "23.4 battery".
    QString text(const SystemPowerWatch::IsGPU &isGPU = [](const std::string &) { return false; })
    {
        const auto power = watch.read(isGPU);
        return power
            ? QString::number(power->watts) + u' ' + QLatin1StringView(sourceName(power->source))
            : u"none"_s;
    }

    void addMonitor(int number, const std::string &driver, const std::string &file,
                    const std::string &value) const
    {
        const std::string folder = "sys/class/hwmon/hwmon" + std::to_string(number) + '/';
        tree.write(folder + "name", driver + '\n');
        tree.write(folder + "device/class", "x\n");
        tree.write(folder + file, value);
    }

    void addBattery(const std::string &name, const std::string &status,
                    const std::string &power) const
    {
        const std::string folder = "sys/class/power_supply/" + name + '/';
        tree.write(folder + "type", "Battery\n");
        tree.write(folder + "status", status + '\n');
        tree.write(folder + "power_now", power);
    }
};

using Setup = std::function<void(const Machine &)>;

} // namespace

/// What measures the power of a whole machine.
class TestSystemPowerWatch : public QObject {
    Q_OBJECT

private slots:
    void takesTheBestSource_data();
    void takesTheBestSource();
    void asksEveryFiveSeconds();
    void findsASourceThatComesLate();
    void leavesGPUsAlone();
};

void TestSystemPowerWatch::takesTheBestSource_data()
{
    QTest::addColumn<Setup>("setup");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const Setup &setup, const QString &expected) {
        QTest::newRow(name) << setup << expected;
    };
    row(
        "none", [](const Machine &) {}, u"none"_s);
    row(
        "a battery that is discharging",
        [](const Machine &machine) { machine.addBattery("BAT0", "Discharging", "23400000\n"); },
        u"23.4 battery"_s);
    row(
        "two batteries add up",
        [](const Machine &machine) {
            machine.addBattery("BAT0", "Discharging", "20000000\n");
            machine.addBattery("BAT1", "Discharging", "5000000\n");
        },
        u"25 battery"_s);
    row(
        "one of two that is discharging",
        [](const Machine &machine) {
            machine.addBattery("BAT0", "Discharging", "20000000\n");
            machine.addBattery("BAT1", "Not charging", "5000000\n");
        },
        u"20 battery"_s);
    row(
        "a battery that is charging",
        [](const Machine &machine) { machine.addBattery("BAT0", "Charging", "23400000\n"); },
        u"none"_s);
    row(
        "that of a mouse",
        [](const Machine &machine) {
            machine.addBattery("mouse", "Discharging", "1000\n");
            machine.tree.write("sys/class/power_supply/mouse/scope", "Device\n");
        },
        u"none"_s);
    row(
        "current and voltage",
        [](const Machine &machine) {
            machine.addBattery("BAT0", "Discharging", "");
            machine.tree.write("sys/class/power_supply/BAT0/current_now", "-2000000\n");
            machine.tree.write("sys/class/power_supply/BAT0/voltage_now", "12000000\n");
        },
        u"24 battery"_s);
    row(
        "a power supply, by its label",
        [](const Machine &machine) {
            machine.addMonitor(1, "corsairpsu", "power2_label", "power total\n");
            machine.tree.write("sys/class/hwmon/hwmon1/power1_input", "1000000\n");
            machine.tree.write("sys/class/hwmon/hwmon1/power2_input", "612000000\n");
        },
        u"612 power supply"_s);
    row(
        "a meter of the firmware",
        [](const Machine &machine) {
            machine.addMonitor(1, "power_meter", "power1_average", "87500000\n");
        },
        u"87.5 ACPI power meter"_s);
    row(
        "a system controller before a battery",
        [](const Machine &machine) {
            machine.addBattery("BAT0", "Discharging", "23400000\n");
            machine.addMonitor(1, "macsmc_hwmon", "power3_label", "Total System Power\n");
            machine.tree.write("sys/class/hwmon/hwmon1/power3_input", "31000000\n");
        },
        u"31 system controller"_s);
    row(
        "the next where the best has no value",
        [](const Machine &machine) {
            machine.addBattery("BAT0", "Discharging", "23400000\n");
            machine.addMonitor(1, "power_meter", "power1_average", "nonsense\n");
        },
        u"23.4 battery"_s);
    row(
        "a sensor of something else",
        [](const Machine &machine) {
            machine.addMonitor(1, "nvme", "power1_average", "87500000\n");
        },
        u"none"_s);
    row(
        "more than any machine draws",
        [](const Machine &machine) {
            machine.addMonitor(1, "power_meter", "power1_average", "99999999999999\n");
        },
        u"none"_s);
}

void TestSystemPowerWatch::takesTheBestSource()
{
    QFETCH(Setup, setup);
    Machine machine;
    setup(machine);
    QTEST(machine.text(), "expected");
}

void TestSystemPowerWatch::asksEveryFiveSeconds()
{
    Machine machine;
    machine.addBattery("BAT0", "Discharging", "20000000\n");
    QCOMPARE(machine.text(), u"20 battery"_s);
    machine.addBattery("BAT0", "Discharging", "30000000\n");
    machine.now += 4;
    QCOMPARE(machine.text(), u"20 battery"_s);
    machine.now += 1;
    QCOMPARE(machine.text(), u"30 battery"_s);
    machine.addBattery("BAT0", "Charging", "40000000\n"); // It was plugged in.
    machine.now += 5;
    QCOMPARE(machine.text(), u"none"_s);
}

void TestSystemPowerWatch::findsASourceThatComesLate()
{
    Machine machine;
    QCOMPARE(machine.text(), u"none"_s);
    machine.addBattery("BAT0", "Discharging", "20000000\n");
    machine.now += 59;
    QCOMPARE(machine.text(), u"none"_s);
    machine.now += 1;
    QCOMPARE(machine.text(), u"20 battery"_s);
    machine.tree.remove("sys/class/power_supply/BAT0");
    machine.now += 60;
    QCOMPARE(machine.text(), u"none"_s);
}

/// Reading a sensor of a GPU would wake it.
void TestSystemPowerWatch::leavesGPUsAlone()
{
    Machine machine;
    machine.addMonitor(1, "power_meter", "power1_average", "87500000\n");
    QCOMPARE(machine.text([](const std::string &) { return true; }), u"none"_s);
}

QTEST_GUILESS_MAIN(TestSystemPowerWatch)
#include "tst_SystemPowerWatch.moc"
