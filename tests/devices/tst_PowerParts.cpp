#include "devices/PowerParts.h"

#include "gallery/ScriptedMachines.h"
#include "records/MachineTotals.h"

#include <QTest>

#include <algorithm>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

using Change = std::function<void(MachineCoverage &, ChipReading &)>;

/// "GPU 318.42, CPU locked: 318.42, GPU only".
QString told(const SystemMetrics &sample)
{
    const MachineCoverage &machine = coverageOf(sample);
    const std::vector<PowerPart> parts = powerParts(machine);
    const std::vector<PowerValue> values = powerValues(parts, sample, machine);
    QStringList texts;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const std::optional<double> watts = values[i].watts;
        const QString value = parts[i].coverage == Coverage::locked ? u"locked"_s
            : parts[i].coverage == Coverage::asleep                 ? u"asleep"_s
            : watts ? QString::number(*watts, 'f', 2)
                    : u"–"_s;
        texts.append(parts[i].label + u' ' + value);
    }
    const std::optional<double> total = totalWatts(values);
    return texts.join(u", "_s) + u": "_s + (total ? QString::number(*total, 'f', 2) : u"–"_s)
        + u", "_s + powerSumText(parts, values, machine);
}

} // namespace

/// What draws power on a machine, and what the sum of it holds.
class TestPowerParts : public QObject {
    Q_OBJECT

private slots:
    void areThoseOfTheMachine_data();
    void areThoseOfTheMachine();
    void addUpToTheLabelsNumber_data();
    void addUpToTheLabelsNumber();
    void ofTheHistoryFileHaveNoZeros();
    void nameTheSourceOfTheWholeMachine();
};

void TestPowerParts::areThoseOfTheMachine_data()
{
    QTest::addColumn<SystemMetrics>("sample");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const ScriptedMachine &machine, const QString &expected,
                        const Change &change = {}) {
        QTest::newRow(name) << (change ? changed(machine.current(), change) : machine.current())
                            << expected;
    };
    const ScriptedMachine card = oneCardMinute();
    const ScriptedMachine apu = apuMinute();
    row("a card, the CPU locked", card, u"GPU 318.42, CPU locked: 318.42, GPU only"_s);
    row("two cards, the CPU locked", twoCardsMinute(),
        u"GPU 455.31, CPU locked: 455.31, GPUs only"_s);
    row("four cards and the CPU", fourCardsMinute(),
        u"CPU 96.40, GPU 739.13: 835.53, CPU and GPUs"_s);
    row("a package and its parts", apu,
        u"CPU 9.84, GPU 21.63, NPU 1.35, Rest 8.38: 41.20, whole package"_s);
    row("parts that add up to more than their package", apu,
        u"CPU 9.84, GPU 21.63, NPU 1.35, Rest 0.00: 32.82, whole package"_s,
        [](MachineCoverage &, ChipReading &chip) { chip.packageWatts = 20; });
    row("a package alone", apu, u"Package 41.20: 41.20, whole package"_s,
        [](MachineCoverage &machine, ChipReading &) {
            machine.cpuWatts = machine.npuWatts = Coverage::absent;
            machine.gpus[0].watts = Coverage::absent;
        });
    row("an NPU alone", apu, u"NPU 1.35: 1.35, NPU only"_s,
        [](MachineCoverage &machine, ChipReading &chip) {
            machine.cpuWatts = machine.packageWatts = Coverage::absent;
            machine.gpus[0].watts = Coverage::absent;
            chip.packageWatts.reset();
        });
    row("a GPU and an NPU", apu, u"GPU 21.63, NPU 1.35, CPU locked: 22.98, GPU and NPU"_s,
        [](MachineCoverage &machine, ChipReading &chip) {
            machine.cpuWatts = Coverage::locked;
            machine.packageWatts = Coverage::absent;
            chip.packageWatts.reset();
        });
    row("a card that sleeps, the CPU locked", sleepingCardMinute(),
        u"GPU asleep, CPU locked: –, nothing to read"_s);
    row("a card that publishes no watts", card, u"CPU locked: –, nothing to read"_s,
        [](MachineCoverage &machine, ChipReading &chip) {
            machine.gpus[0].watts = Coverage::unpublished;
            chip.gpus[0].watts.reset();
        });
    row("a reading that lacks the watts", card, u"GPU –, CPU locked: –, nothing to read"_s,
        [](MachineCoverage &, ChipReading &chip) { chip.gpus.clear(); });
    row("a true zero", card, u"GPU 0.00, CPU locked: 0.00, GPU only"_s,
        [](MachineCoverage &, ChipReading &chip) { chip.gpus[0].watts = 0; });
    row("nothing", virtualMachineMinute(), u": –, nothing to read"_s);
    QTest::newRow("a whole chip that denies a part")
        << SystemMetrics{.chip = ChipReading{.cpuWatts = 0,
                                             .gpuWatts = 4,
                                             .denied = {.cpuWatts = true}}}
        << u"CPU –, GPU 4.00, ANE 0.00: –, GPU only"_s;
    QTest::newRow("a whole chip without a reading")
        << SystemMetrics() << u"CPU 0.00, GPU 0.00, ANE 0.00: 0.00, CPU and GPU"_s;
}

void TestPowerParts::areThoseOfTheMachine()
{
    QFETCH(SystemMetrics, sample);
    QTEST(told(sample), "expected");
}

/// The label and the card show one sum.
void TestPowerParts::addUpToTheLabelsNumber_data()
{
    areThoseOfTheMachine_data();
}

void TestPowerParts::addUpToTheLabelsNumber()
{
    QFETCH(SystemMetrics, sample);
    const MachineCoverage &machine = coverageOf(sample);
    const PowerTotal total = powerTotal(sample);
    if (machine.isWhole)
        return;
    const auto values = powerValues(powerParts(machine), sample, machine);
    const bool isKnown = total.state == FigureState::known;
    QCOMPARE(totalWatts(values), isKnown ? std::optional(total.watts) : std::nullopt);
}

/// The file does not tell an absent value from a 0.
void TestPowerParts::ofTheHistoryFileHaveNoZeros()
{
    const MachineCoverage machine = fourCardsMinute().coverage();
    const std::vector<PowerPart> parts = powerParts(machine);
    const auto read = [&](double cpu, double gpu) {
        const SystemMetrics sample{.chip = ChipReading{.cpuWatts = cpu, .gpuWatts = gpu}};
        return powerValues(parts, sample, machine);
    };
    QCOMPARE(read(12, 30)[0].watts, std::optional(12.0));
    QCOMPARE(read(12, 30)[1].watts, std::optional(30.0));
    QVERIFY(!read(0, 30)[0].watts);
    QVERIFY(!read(12, 0)[1].watts);
}

void TestPowerParts::nameTheSourceOfTheWholeMachine()
{
    QCOMPARE(systemWattsText(23.412, u"battery"_s), u"System 23.41 W · battery"_s);
    QCOMPARE(systemWattsText(23.412, {}), u"System 23.41 W"_s);
}

QTEST_GUILESS_MAIN(TestPowerParts)
#include "tst_PowerParts.moc"
