#include "cards/UnitReading.h"

#include "gallery/ScriptedMachines.h"

#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

constexpr std::array allUnits{ComputeUnit::cpu, ComputeUnit::gpu, ComputeUnit::ane};

SystemMetrics state(const std::optional<QString> &name)
{
    return {.chip = ChipReading{.gpuDominantState = name}};
}

const ChipInfo tenWatts{.aneMaxW = 10};

} // namespace

class TestUnitReading : public QObject {
    Q_OBJECT

private slots:
    void takesLoadAndPowerOfItsUnit_data();
    void takesLoadAndPowerOfItsUnit();
    void takesTheTemperatureOfItsUnitElseOfThePackage_data();
    void takesTheTemperatureOfItsUnitElseOfThePackage();
    void isZeroWithoutAChipReading();
    void showsADashForWhatIsDenied();
    void takesTheStateOfTheLastFiveSamples_data();
    void takesTheStateOfTheLastFiveSamples();
    void showsPowerAndTemperature_data();
    void showsPowerAndTemperature();
    void showsWhatIsSpecialToItsUnit_data();
    void showsWhatIsSpecialToItsUnit();
    void showsWhatTheMachineTells_data();
    void showsWhatTheMachineTells();
};

void TestUnitReading::takesLoadAndPowerOfItsUnit_data()
{
    QTest::addColumn<ComputeUnit>("unit");
    QTest::addColumn<double>("aneWatts");
    QTest::addColumn<double>("ceiling");
    QTest::addColumn<double>("loadPercent");
    QTest::addColumn<double>("watts");
    QTest::newRow("CPU") << ComputeUnit::cpu << 0.0 << 10.0 << 25.0 << 1.0;
    QTest::newRow("GPU") << ComputeUnit::gpu << 0.0 << 10.0 << 50.0 << 2.0;
    QTest::newRow("Neural Engine") << ComputeUnit::ane << 2.5 << 10.0 << 25.0 << 2.5;
    QTest::newRow("at most 100 %") << ComputeUnit::ane << 12.0 << 10.0 << 100.0 << 12.0;
    QTest::newRow("no ceiling") << ComputeUnit::ane << 12.0 << 0.0 << 0.0 << 12.0;
}

void TestUnitReading::takesLoadAndPowerOfItsUnit()
{
    QFETCH(ComputeUnit, unit);
    QFETCH(double, aneWatts);
    QFETCH(double, ceiling);
    const ChipReading chip{.cpuWatts = 1,
                           .gpuWatts = 2,
                           .aneWatts = aneWatts,
                           .cpuActiveFraction = 0.25,
                           .gpuActiveFraction = 0.5};
    const UnitReading reading = unitReading(unit, chip, {.aneMaxW = ceiling});
    QTEST(reading.loadPercent, "loadPercent");
    QTEST(reading.watts, "watts");
}

void TestUnitReading::takesTheTemperatureOfItsUnitElseOfThePackage_data()
{
    using Temp = std::optional<double>;
    QTest::addColumn<ComputeUnit>("unit");
    QTest::addColumn<ChipReading>("chip");
    QTest::addColumn<Temp>("tempC");
    const ChipReading all{.cpuTempC = 74, .gpuTempC = 71, .aneTempC = 68, .packageTempC = 60};
    const ChipReading package{.packageTempC = 60};
    const std::array expected{74.0, 71.0, 68.0};
    for (std::size_t i = 0; i < allUnits.size(); ++i) {
        QTest::addRow("its own, unit %zu", i) << allUnits[i] << all << Temp(expected[i]);
        QTest::addRow("the package's, unit %zu", i) << allUnits[i] << package << Temp(60);
        QTest::addRow("none, unit %zu", i) << allUnits[i] << ChipReading{} << Temp();
    }
}

void TestUnitReading::takesTheTemperatureOfItsUnitElseOfThePackage()
{
    QFETCH(ComputeUnit, unit);
    QFETCH(ChipReading, chip);
    QTEST(unitReading(unit, chip, tenWatts).tempC, "tempC");
}

void TestUnitReading::isZeroWithoutAChipReading()
{
    for (const ComputeUnit unit : allUnits) {
        const UnitReading reading = newestUnitReading(unit, {}, {}, tenWatts);
        QCOMPARE(reading.loadPercent, 0.0);
        QCOMPARE(reading.watts, 0.0);
        QVERIFY(!reading.tempC && !reading.dominantState);
    }
}

void TestUnitReading::showsADashForWhatIsDenied()
{
    const ChipReading chip{.cpuActiveFraction = 0.25,
                           .gpuActiveFraction = 0.5,
                           .denied = {.gpuLoad = true, .cpuWatts = true, .aneWatts = true}};
    const auto texts = [&](ComputeUnit unit) {
        const UnitReading reading = unitReading(unit, chip, tenWatts);
        return unitPillTexts(reading).mid(0, 2) + QStringList{unitStatText(reading)};
    };
    QCOMPARE(texts(ComputeUnit::cpu), (QStringList{u"25%"_s, u"–"_s, u"–"_s}));
    QCOMPARE(texts(ComputeUnit::gpu), (QStringList{u"–"_s, u"0.00W"_s, u"0.00 W"_s}));
    QCOMPARE(texts(ComputeUnit::ane), (QStringList{u"–"_s, u"–"_s, u"–"_s}));
}

void TestUnitReading::takesTheStateOfTheLastFiveSamples_data()
{
    using History = std::vector<SystemMetrics>;
    using Text = std::optional<QString>;
    QTest::addColumn<History>("history");
    QTest::addColumn<Text>("current");
    QTest::addColumn<Text>("expected");
    const SystemMetrics p1 = state(u"P1"_s);
    const SystemMetrics p9 = state(u"P9"_s);
    const SystemMetrics none = state(std::nullopt);
    QTest::newRow("the most frequent of the last five")
        << History{p9, p9, p9, p1, p1, p1, p9, p9} << Text(u"P9"_s) << Text(u"P1"_s);
    QTest::newRow("the current sample's if those have none")
        << History{p1, none, none, none, none, none} << Text(u"P7"_s) << Text(u"P7"_s);
    QTest::newRow("an empty state of the current sample")
        << History{none} << Text(QString(u""_s)) << Text(QString(u""_s));
    QTest::newRow("absent everywhere") << History{} << Text() << Text();
}

void TestUnitReading::takesTheStateOfTheLastFiveSamples()
{
    QFETCH(std::vector<SystemMetrics>, history);
    QFETCH(std::optional<QString>, current);
    const UnitReading gpu = newestUnitReading(ComputeUnit::gpu, state(current), history, tenWatts);
    QTEST(gpu.dominantState, "expected");
    QTEST(unitSubtitle(gpu), "expected");
    const UnitReading cpu = newestUnitReading(ComputeUnit::cpu, state(current), history, tenWatts);
    QVERIFY(!cpu.dominantState);
}

void TestUnitReading::showsPowerAndTemperature_data()
{
    using Temp = std::optional<double>;
    QTest::addColumn<Temp>("tempC");
    QTest::addColumn<QString>("expected");
    QTest::newRow("both") << Temp(74.4) << u"1.00 W · 74°C"_s;
    QTest::newRow("no temperature") << Temp() << u"1.00 W"_s;
    QTest::newRow("a temperature of 0 is not shown") << Temp(0) << u"1.00 W"_s;
}

void TestUnitReading::showsPowerAndTemperature()
{
    QFETCH(std::optional<double>, tempC);
    QTEST(unitStatText({.watts = 1, .tempC = tempC}), "expected");
}

void TestUnitReading::showsWhatIsSpecialToItsUnit_data()
{
    using Text = std::optional<QString>;
    QTest::addColumn<UnitReading>("reading");
    QTest::addColumn<Text>("subtitle");
    QTest::addColumn<QStringList>("pill");
    const auto row = [](const char *name, const UnitReading &reading, const Text &subtitle,
                        const QStringList &inPill) {
        QTest::newRow(name) << reading << subtitle << (QStringList{u"0%"_s, u"0.00W"_s} + inPill);
    };
    row("gigahertz", {.megahertz = 3267}, u"3.27 GHz"_s, {u"3.27GHz"_s});
    row("gigahertz from 1000 MHz on", {.megahertz = 1000}, u"1.00 GHz"_s, {u"1.00GHz"_s});
    row("rounded after the unit is chosen", {.megahertz = 999.6}, u"1000 MHz"_s, {u"1000MHz"_s});
    row("megahertz", {.megahertz = 600.4}, u"600 MHz"_s, {u"600MHz"_s});
    row("an unknown frequency", {.megahertz = 0}, std::nullopt, {u"0MHz"_s});
    row("the GPU's state", {.dominantState = u"P12"_s}, u"P12"_s, {});
    row("an unknown state", {}, std::nullopt, {});
    row("the Neural Engine's ceiling", {.ceilingWatts = 10}, u"≈10W max"_s, {});
    row("a ceiling cut to whole watts", {.ceilingWatts = 7.9}, u"≈7W max"_s, {});
}

void TestUnitReading::showsWhatIsSpecialToItsUnit()
{
    QFETCH(UnitReading, reading);
    QTEST(unitSubtitle(reading), "subtitle");
    QTEST(unitPillTexts(reading), "pill");
}

void TestUnitReading::showsWhatTheMachineTells_data()
{
    using Change = std::function<void(MachineCoverage &, ChipReading &)>;
    QTest::addColumn<ComputeUnit>("unit");
    QTest::addColumn<SystemMetrics>("sample");
    QTest::addColumn<QString>("stat");
    QTest::addColumn<QString>("subtitle");
    QTest::addColumn<QStringList>("pill");
    const auto row = [](
                         const char *name, ComputeUnit unit, const ScriptedMachine &machine,
                         const QString &stat, const QString &subtitle, const QStringList &pill,
                         const Change &change = [](MachineCoverage &, ChipReading &) {}) {
        QTest::newRow(name) << unit << changed(machine.current(), change) << stat << subtitle
                            << pill;
    };
    using enum ComputeUnit;
    row("a CPU whose watts are locked", cpu, oneCardMinute(), u"61°C"_s, u"4.32 GHz"_s,
        {u"23%"_s, u"4.32GHz"_s});
    row("a CPU that tells its watts", cpu, apuMinute(), u"9.84 W · 74°C"_s, u"3.62 GHz"_s,
        {u"31%"_s, u"9.84W"_s, u"3.62GHz"_s});
    row("a CPU whose watts are missing now", cpu, apuMinute(), u"– · 74°C"_s, u"3.62 GHz"_s,
        {u"31%"_s, u"–"_s, u"3.62GHz"_s}, [](MachineCoverage &, ChipReading &chip) {
            chip.cpuWatts = 0;
            chip.denied.cpuWatts = true;
        });
    row("a CPU whose load cannot be read", cpu, virtualMachineMinute(), {}, u"2.30 GHz nominal"_s,
        {u"–"_s, u"2.30GHz"_s}, [](MachineCoverage &, ChipReading &chip) {
            chip.cpuActiveFraction = 0;
            chip.denied.cpuLoad = true;
        });
    row("a card", gpu, oneCardMinute(), u"318.42 W · 66°C"_s, u"P2 · 2.61 GHz"_s,
        {u"97%"_s, u"318.42W"_s, u"2.61GHz"_s});
    row("an integrated GPU without watts", gpu, integratedOnlyMinute(), {}, u"0.60 GHz"_s,
        {u"14%"_s, u"600MHz"_s});
    row("one that stands in for a card that sleeps", gpu, sleepingCardMinute(), {},
        u"0.45 GHz · integrated"_s, {u"6%"_s, u"450MHz"_s});
    row("a card that cannot be read now", gpu, oneCardMinute(), u"–"_s, {}, {u"–"_s, u"–"_s},
        [](MachineCoverage &, ChipReading &chip) { chip.gpus.clear(); });
    row("an NPU", ane, apuMinute(), u"1.35 W"_s, u"1.80 GHz"_s,
        {u"17%"_s, u"1.35W"_s, u"1.80GHz"_s});
    row("an NPU that tells its load alone", ane, apuMinute(), {}, {}, {u"17%"_s},
        [](MachineCoverage &machine, ChipReading &chip) {
            machine.npuWatts = Coverage::unpublished;
            chip.npu = NPUMetrics{.activeFraction = 0.17};
        });
}

void TestUnitReading::showsWhatTheMachineTells()
{
    QFETCH(ComputeUnit, unit);
    QFETCH(SystemMetrics, sample);
    const UnitReading reading = unitReading(unit, sample, coverageOf(sample));
    QTEST(unitStatText(reading), "stat");
    QTEST(unitSubtitle(reading).value_or(QString()), "subtitle");
    QTEST(unitPillTexts(reading), "pill");
}

QTEST_APPLESS_MAIN(TestUnitReading)
#include "tst_UnitReading.moc"
