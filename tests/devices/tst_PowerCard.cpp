#include "charts/Sparkline.h"
#include "controls/InfoButton.h"
#include "controls/InfoPopover.h"
#include "devices/PowerCard.h"
#include "gallery/ScriptedSamples.h"
#include "support/Rendering.h"
#include "support/ShownCard.h"
#include "ui/Theme.h"

#include <QTest>

#include <cmath>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

using History = std::vector<SystemMetrics>;

SystemMetrics sample(double time, double cpu, double gpu = 0, double ane = 0)
{
    return {.timestamp = time,
            .chip = ChipReading{.cpuWatts = cpu, .gpuWatts = gpu, .aneWatts = ane}};
}

History steady(double watts)
{
    return {sample(0, watts), sample(30, watts), sample(60, watts)};
}

struct Shown : ShownCard<PowerCard> {
    Shown() : ShownCard(QSize(617, 262)) { }

    void show(const History &history) { card.show(history.back(), history); }
};

} // namespace

class TestPowerCard : public QObject {
    Q_OBJECT

private slots:
    void findsThePeak_data();
    void findsThePeak();
    void scalesAbovePeaks_data();
    void scalesAbovePeaks();
    void neverLowersTheScale();
    void raisesTheScaleWithoutShowing();
    void showsPeakAndTemperature_data();
    void showsPeakAndTemperature();
    void stacksBands_data();
    void stacksBands();
    void showsHoveredValues();
    void whatIsDeniedHasADashAndAGap();
    void showsItsLegend();
    void leavesNoStalePixels_data();
    void leavesNoStalePixels();
    void fitsHugePower();
    void meansStackToTheirSum();
    void aWindowWithoutANewPointIsNotDrawnAgain();
    void tellsTheEnergyOfTheDay_data();
    void tellsTheEnergyOfTheDay();
};

namespace {

MeanRecord means(double start, float cpu, float gpu)
{
    MeanRecord record{.start = start, .seconds = 10};
    record.means[indexOf(Measure::cpuWatts)] = {cpu, cpu, cpu, 10};
    record.means[indexOf(Measure::gpuWatts)] = {gpu, gpu, gpu, 10};
    record.means[indexOf(Measure::npuWatts)] = {0, 0, 0, 10};
    record.means[indexOf(Measure::totalWatts)] = {cpu + gpu, 1, 2 * (cpu + gpu), 10};
    return record;
}

} // namespace

void TestPowerCard::meansStackToTheirSum()
{
    const std::vector<MeanRecord> records{means(0, 3, 5), means(10, 4, 10)};
    Shown shown;
    shown.card.show(sample(20, 1), {steady(1), MeanWindow{-580, 20, records}});
    const SparklineData &chart = shown.card.chart()->shown();
    QVERIFY(chart.stacking == Stacking::stacked);
    QCOMPARE(chart.series[0].values[1], std::optional(4.0));
    QCOMPARE(chart.series[1].values[1], std::optional(10.0));
    QCOMPARE(chart.band[1], std::optional(ChartRange{1, 28}));
    QCOMPARE(shown.card.accessibleText(u"Power"_s), u"peak 28.0 W"_s);
    QCOMPARE(chart.yDomain.upper, powerScale(28));
    QCOMPARE(shown.card.stableYMax(), 5.0); // That of a minute is its own.
    const QString newest = shown.card.chart()->accessibleValue();
    QVERIFY2(newest.contains(u"14.00 W"_s) && newest.contains(u" · 1.0–28.0 W"_s),
             qPrintable(newest));
}

void TestPowerCard::aWindowWithoutANewPointIsNotDrawnAgain()
{
    std::vector<MeanRecord> records{means(0, 3, 5)};
    Shown shown;
    shown.card.show(sample(10, 1), {steady(1), MeanWindow{-590, 10, records}});
    records.front() = means(0, 30, 50); // Nothing that could happen; it would be seen.
    shown.card.show(sample(11, 1), {steady(1), MeanWindow{-590, 10, records}});
    QCOMPARE(shown.card.chart()->shown().series[0].values[0], std::optional(3.0));
    shown.card.show(sample(12, 1), steady(7)); // A minute.
    QVERIFY(!shown.card.chart()->shown().showsMeans);
    shown.card.show(sample(13, 1), {steady(1), MeanWindow{-590, 10, records}});
    QCOMPARE(shown.card.chart()->shown().series[0].values[0], std::optional(30.0));
}

void TestPowerCard::tellsTheEnergyOfTheDay_data()
{
    QTest::addColumn<bool>("isWhole");
    QTest::addColumn<QString>("onTheCard");
    QTest::newRow("a Mac's card has it as tool tip") << true << QString();
    QTest::newRow("another machine's card shows it")
        << false << u"412 Wh today, 7 h 12 min measured"_s;
}

void TestPowerCard::tellsTheEnergyOfTheDay()
{
    QFETCH(bool, isWhole);
    SystemMetrics current = sample(0, 5);
    if (!isWhole)
        current.chip->coverage = std::make_shared<const MachineCoverage>(
            MachineCoverage{.isWhole = false, .cpuWatts = Coverage::known});
    Shown shown;
    shown.card.showEnergy(
        {.days = {{QDate(2026, 6, 10), {.seconds = 25'920, .all = 412 * 3'600}}}});
    shown.card.show(current, History{current});
    QTEST(shown.card.accessibleText(u"Energy"_s), "onTheCard");
    QVERIFY(shown.card.toolTip().contains(u"412 Wh today, 7 h 12 min measured"_s));
    auto *button = shown.card.findChild<InfoButton *>();
    button->click();
    QVERIFY(button->popover());
    QVERIFY(button->popover()->accessibleTexts().back().value.contains(u"Wed 10 Jun"_s));
}

void TestPowerCard::findsThePeak_data()
{
    QTest::addColumn<History>("history");
    QTest::addColumn<double>("expected");
    QTest::newRow("no history") << History{} << 0.0;
    QTest::newRow("one sample is its total") << History{sample(0, 1, 2, 4)} << 7.0;
    QTest::newRow("two samples are averaged") << History{sample(0, 6), sample(1, 2)} << 4.0;
    QTest::newRow("a spike is averaged with its neighbours")
        << History{sample(0, 0), sample(1, 0), sample(2, 9), sample(3, 0), sample(4, 0)} << 3.0;
    QTest::newRow("a missing reading counts as 0")
        << History{sample(0, 6), {.timestamp = 1}, sample(2, 6)} << 4.0;
    QTest::newRow("never below 0") << History{sample(0, -5)} << 0.0;
}

void TestPowerCard::findsThePeak()
{
    QFETCH(History, history);
    QTEST(peakTotal(history), "expected");
}

void TestPowerCard::scalesAbovePeaks_data()
{
    QTest::addColumn<double>("peak");
    QTest::addColumn<double>("expected");
    QTest::newRow("no power") << 0.0 << 5.0;
    QTest::newRow("4 W") << 4.0 << 5.0;
    QTest::newRow("just below 5 with its room") << std::nextafter(5 / 1.18, 0) << 5.0;
    QTest::newRow("exactly 5 with its room") << 5 / 1.18 << 10.0;
    QTest::newRow("8 W") << 8.0 << 10.0;
    QTest::newRow("exactly 10 with its room") << 10 / 1.18 << 10.0;
    QTest::newRow("just above 10 with its room") << std::nextafter(10 / 1.18, 99) << 15.0;
    QTest::newRow("just below 25 with its room: fives") << std::nextafter(25 / 1.18, 0) << 25.0;
    QTest::newRow("exactly 25 with its room: tens") << 25 / 1.18 << 30.0;
    QTest::newRow("exactly 100 with its room") << 100 / 1.18 << 100.0;
    QTest::newRow("just above 100 with its room: twenty-fives")
        << std::nextafter(100 / 1.18, 999) << 125.0;
    QTest::newRow("8.6 W: fives") << 8.6 << 15.0;
    QTest::newRow("30 W: tens") << 30.0 << 40.0;
    QTest::newRow("90 W: twenty-fives") << 90.0 << 125.0;
    QTest::newRow("400 W") << 400.0 << 475.0;
}

void TestPowerCard::scalesAbovePeaks()
{
    QFETCH(double, peak);
    QTEST(powerScale(peak), "expected");
}

void TestPowerCard::neverLowersTheScale()
{
    Shown shown;
    QCOMPARE(shown.card.stableYMax(), 5.0);
    shown.show(steady(30));
    QCOMPARE(shown.card.stableYMax(), 40.0);
    shown.show(steady(2));
    QCOMPARE(shown.card.stableYMax(), 40.0);
    shown.show(steady(90));
    QCOMPARE(shown.card.stableYMax(), 125.0);
}

void TestPowerCard::raisesTheScaleWithoutShowing()
{
    Shown shown;
    shown.card.recomputeYMax(steady(30));
    QCOMPARE(shown.card.stableYMax(), 40.0);
    QCOMPARE(shown.card.accessibleText(u"Power"_s), QString());
}

void TestPowerCard::showsPeakAndTemperature_data()
{
    using Temp = std::optional<double>;
    QTest::addColumn<Temp>("package");
    QTest::addColumn<QString>("expected");
    QTest::newRow("both") << Temp(47.2) << u"peak 12.4 W · pkg 47°C"_s;
    QTest::newRow("no temperature") << Temp() << u"peak 12.4 W"_s;
    QTest::newRow("zero degrees") << Temp(0) << u"peak 12.4 W"_s;
}

void TestPowerCard::showsPeakAndTemperature()
{
    QFETCH(std::optional<double>, package);
    Shown shown;
    History history = steady(12.4);
    history.back().chip->packageTempC = package;
    shown.show(history);
    QTEST(shown.card.accessibleText(u"Power"_s), "expected");
    history.back().chip.reset();
    shown.show(history);
    QVERIFY(!shown.card.accessibleText(u"Power"_s).contains(u"pkg"_s));
}

void TestPowerCard::stacksBands_data()
{
    QTest::addColumn<double>("scale");
    QTest::newRow("scale 1") << 1.0;
    QTest::newRow("scale 2") << 2.0;
}

void TestPowerCard::stacksBands()
{
    QFETCH(double, scale);
    Shown shown;
    // 1 + 2 + 1 W of 5: the bands end at 20, 60 and 80 % of a chart 174 high that ends at 246.
    shown.show({sample(0, 1, 2, 1), sample(60, 1, 2, 1)});
    const QImage image = rendered(shown.card, scale);
    const auto at = [&](double watts) { return 246 - 174 * watts / 5; };
    const auto looksLike = [](const QColor &actual, const QColor &color) {
        const auto share = [](int part) { return part > 150; };
        return (actual.red() > 100) == share(color.red())
            && (actual.blue() > 100) == share(color.blue());
    };
    QVERIFY(looksLike(pixelAt(image, 300, at(0.9)), Theme::cpu));
    QVERIFY(looksLike(pixelAt(image, 300, at(1.1)), Theme::gpu));
    QVERIFY(looksLike(pixelAt(image, 300, at(2.9)), Theme::gpu));
    QVERIFY(looksLike(pixelAt(image, 300, at(3.1)), Theme::ane));
    QVERIFY(looksLike(pixelAt(image, 300, at(3.9)), Theme::ane));
    QVERIFY(pixelAt(image, 300, at(4.1)).red() < 60);
}

void TestPowerCard::showsHoveredValues()
{
    Shown shown;
    History history = steady(1);
    history.back() = sample(60, 9.3, 29.92, 0.38);
    shown.show(history);
    // Without a cursor the accessible value is that of the newest sample.
    QCOMPARE(shown.card.chart()->accessibleValue().section(u", "_s, 1),
             u"39.60 W, CPU 9.30, GPU 29.92, ANE 0.38"_s);
    history.back().chip.reset();
    shown.show(history);
    QVERIFY(shown.card.chart()->accessibleValue().contains(u"0.00 W"_s));
}

void TestPowerCard::whatIsDeniedHasADashAndAGap()
{
    Shown shown;
    History history = steady(1);
    history.back() = sample(60, 0, 29.92, 0);
    history.back().chip->denied = {.cpuWatts = true, .aneWatts = true};
    shown.show(history);
    QCOMPARE(shown.card.chart()->accessibleValue().section(u", "_s, 1),
             u"–, CPU –, GPU 29.92, ANE –"_s);
    QVERIFY(shown.card.accessibleText(u"Power"_s) != u"peak –"_s);
    using Watts = std::vector<std::optional<double>>;
    const std::vector<SparklineSeries> &series = shown.card.chart()->shown().series;
    QCOMPARE(series[0].values, (Watts{1, 1, std::nullopt}));
    QCOMPARE(series[1].values, (Watts{0, 0, 29.92}));
    QCOMPARE(series[2].values, (Watts{0, 0, std::nullopt}));
    for (SystemMetrics &each : history)
        each.chip->denied.cpuWatts = true;
    shown.show(history);
    QCOMPARE(shown.card.accessibleText(u"Power"_s), u"peak –"_s);
}

void TestPowerCard::showsItsLegend()
{
    Shown shown;
    shown.show(steady(1));
    const QImage image = rendered(shown.card, 2);
    QVERIFY(isClose(pixelAt(image, 19, 53), Theme::cpu));
    QCOMPARE(shown.card.chart()->geometry(), QRect(16, 72, 585, 174));
}

void TestPowerCard::leavesNoStalePixels_data()
{
    History earlier = scriptedHistory();
    earlier.pop_back();
    History hot = steady(30);
    hot.back().chip->packageTempC = 60;
    QTest::addColumn<History>("before");
    QTest::addColumn<History>("after");
    QTest::newRow("another second") << earlier << scriptedHistory();
    QTest::newRow("a longer text") << steady(3) << steady(300);
    QTest::newRow("a shorter text") << hot << steady(3);
    QTest::newRow("the chip readings end") << scriptedHistory() << historyWithoutChip();
}

void TestPowerCard::leavesNoStalePixels()
{
    QFETCH(History, before);
    QFETCH(History, after);
    Shown shown;
    shown.show(before);
    QCOMPARE(stalePixelsAfter([&] { shown.show(after); }, shown.card), QRect());
}

void TestPowerCard::fitsHugePower()
{
    Shown shown;
    shown.card.resize(437, 236);
    History history = steady(133);
    for (SystemMetrics &metrics : history)
        metrics.chip =
            ChipReading{.cpuWatts = 123456, .gpuWatts = 133, .aneWatts = 134, .packageTempC = 104};
    shown.show(history);
    QCOMPARE(shown.card.accessibleText(u"Power"_s), u"peak 123723.0 W · pkg 104°C"_s);
    for (const AccessibleText &text : shown.card.accessibleTexts())
        QVERIFY(text.place.left() >= 0 && text.place.right() <= 437);
    // Empty, single and backwards histories draw no series.
    shown.card.show({}, History());
    shown.show({sample(5, 3)});
    shown.show({sample(5, 3), sample(4, 3)});
    rendered(shown.card, 1);
}

QTEST_MAIN(TestPowerCard)
#include "tst_PowerCard.moc"
