#include "cards/Utilization.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

SystemMetrics sample(const ChipReading &chip)
{
    return {.chip = chip};
}

SystemMetrics state(const std::optional<QString> &name)
{
    ChipReading chip;
    chip.gpuDominantState = name;
    return sample(chip);
}

const ChipInfo tenWatts{.aneMaxW = 10};

} // namespace

class TestUtilization : public QObject {
    Q_OBJECT

private slots:
    void tellsTheLoad_data();
    void tellsTheLoad();
    void tellsPowerAndTemperature_data();
    void tellsPowerAndTemperature();
    void tellsTheFrequency_data();
    void tellsTheFrequency();
    void tellsTheDominantState_data();
    void tellsTheDominantState();
    void tellsTheCeiling();
    void tellsNothingWithoutAReading();
};

void TestUtilization::tellsTheLoad_data()
{
    QTest::addColumn<UtilizationKind>("kind");
    QTest::addColumn<double>("aneWatts");
    QTest::addColumn<double>("ceiling");
    QTest::addColumn<double>("expected");
    QTest::newRow("CPU") << UtilizationKind::cpu << 0.0 << 10.0 << 25.0;
    QTest::newRow("GPU") << UtilizationKind::gpu << 0.0 << 10.0 << 50.0;
    QTest::newRow("Neural Engine") << UtilizationKind::ane << 2.5 << 10.0 << 25.0;
    QTest::newRow("not above the ceiling") << UtilizationKind::ane << 12.0 << 10.0 << 100.0;
    QTest::newRow("no ceiling") << UtilizationKind::ane << 12.0 << 0.0 << 0.0;
}

void TestUtilization::tellsTheLoad()
{
    QFETCH(UtilizationKind, kind);
    QFETCH(double, aneWatts);
    QFETCH(double, ceiling);
    const ChipReading chip{
        .aneWatts = aneWatts, .cpuActiveFraction = 0.25, .gpuActiveFraction = 0.5};
    QTEST(loadPercent(kind, chip, ChipInfo{.aneMaxW = ceiling}), "expected");
}

void TestUtilization::tellsPowerAndTemperature_data()
{
    using Temp = std::optional<double>;
    QTest::addColumn<UtilizationKind>("kind");
    QTest::addColumn<Temp>("own");
    QTest::addColumn<Temp>("package");
    QTest::addColumn<QString>("expected");
    QTest::newRow("its own temperature")
        << UtilizationKind::cpu << Temp(74.4) << Temp(60) << u"1.00 W · 74°C"_s;
    QTest::newRow("the package's when it has none")
        << UtilizationKind::cpu << Temp() << Temp(52.4) << u"1.00 W · 52°C"_s;
    QTest::newRow("a GPU's") << UtilizationKind::gpu << Temp(71) << Temp() << u"2.00 W · 71°C"_s;
    QTest::newRow("a Neural Engine's")
        << UtilizationKind::ane << Temp(68) << Temp() << u"3.00 W · 68°C"_s;
    QTest::newRow("no temperature") << UtilizationKind::gpu << Temp() << Temp() << u"2.00 W"_s;
    QTest::newRow("zero is none, and hides the package's")
        << UtilizationKind::ane << Temp(0) << Temp(50) << u"3.00 W"_s;
}

void TestUtilization::tellsPowerAndTemperature()
{
    QFETCH(UtilizationKind, kind);
    QFETCH(std::optional<double>, own);
    QFETCH(std::optional<double>, package);
    ChipReading chip{.cpuWatts = 1, .gpuWatts = 2, .aneWatts = 3};
    chip.packageTempC = package;
    (kind == UtilizationKind::cpu       ? chip.cpuTempC
         : kind == UtilizationKind::gpu ? chip.gpuTempC
                                        : chip.aneTempC) = own;
    QTEST(unitStatText(kind, chip), "expected");
}

void TestUtilization::tellsTheFrequency_data()
{
    using Text = std::optional<QString>;
    QTest::addColumn<double>("megahertz");
    QTest::addColumn<Text>("expected");
    QTest::newRow("gigahertz") << 3267.0 << Text(u"3.27 GHz"_s);
    QTest::newRow("from a thousand on") << 1000.0 << Text(u"1.00 GHz"_s);
    QTest::newRow("the switch is on the unrounded value") << 999.6 << Text(u"1000 MHz"_s);
    QTest::newRow("megahertz") << 600.4 << Text(u"600 MHz"_s);
    QTest::newRow("unknown") << 0.0 << Text();
}

void TestUtilization::tellsTheFrequency()
{
    QFETCH(double, megahertz);
    const SystemMetrics current = sample({.cpuActiveMHz = megahertz});
    QTEST(utilizationSubtitle(UtilizationKind::cpu, current, {}, tenWatts), "expected");
}

void TestUtilization::tellsTheDominantState_data()
{
    using History = std::vector<SystemMetrics>;
    using Text = std::optional<QString>;
    QTest::addColumn<History>("history");
    QTest::addColumn<Text>("current");
    QTest::addColumn<Text>("expected");
    const SystemMetrics p1 = state(u"P1"_s);
    const SystemMetrics p9 = state(u"P9"_s);
    const SystemMetrics none = state(std::nullopt);
    QTest::newRow("most often in the last five")
        << History{p9, p9, p9, p1, p1, p1, p9, p9} << Text(u"P9"_s) << Text(u"P1"_s);
    QTest::newRow("else the current one's")
        << History{p1, none, none, none, none, none} << Text(u"P7"_s) << Text(u"P7"_s);
    QTest::newRow("which may be empty")
        << History{none} << Text(QString(u""_s)) << Text(QString(u""_s));
    QTest::newRow("or absent") << History{} << Text() << Text();
}

void TestUtilization::tellsTheDominantState()
{
    QFETCH(std::vector<SystemMetrics>, history);
    QFETCH(std::optional<QString>, current);
    QTEST(utilizationSubtitle(UtilizationKind::gpu, state(current), history, tenWatts), "expected");
}

void TestUtilization::tellsTheCeiling()
{
    QCOMPARE(utilizationSubtitle(UtilizationKind::ane, {}, {}, tenWatts), u"≈10W max"_s);
    QCOMPARE(utilizationSubtitle(UtilizationKind::ane, {}, {}, {.aneMaxW = 7.9}), u"≈7W max"_s);
}

void TestUtilization::tellsNothingWithoutAReading()
{
    for (const UtilizationKind kind :
         {UtilizationKind::cpu, UtilizationKind::gpu, UtilizationKind::ane}) {
        QCOMPARE(loadPercent(kind, std::nullopt, tenWatts), 0.0);
        QCOMPARE(unitWatts(kind, std::nullopt), 0.0);
        QVERIFY(!unitTempC(kind, std::nullopt));
        QCOMPARE(unitStatText(kind, std::nullopt), u"0.00 W"_s);
    }
    QVERIFY(!utilizationSubtitle(UtilizationKind::cpu, {}, {}, tenWatts));
    QVERIFY(!utilizationSubtitle(UtilizationKind::gpu, {}, {}, tenWatts));
}

QTEST_APPLESS_MAIN(TestUtilization)
#include "tst_Utilization.moc"
