#include "cards/UtilizationCard.h"
#include "charts/CoreBars.h"
#include "charts/Sparkline.h"
#include "gallery/ScriptedSamples.h"
#include "support/Rendering.h"
#include "support/ShownCard.h"
#include "ui/Theme.h"

#include <QAccessible>
#include <QMouseEvent>
#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

const ChipInfo tenWatts{.aneMaxW = 10};

/// The size is that on a dashboard of 1200 × 900.
struct Shown : ShownCard<UtilizationCard> {
    explicit Shown(ComputeUnit unit) : ShownCard(QSize(400, 226), unit, nullptr, tenWatts) { }

    void show(const ChipReading &chip)
    {
        SystemMetrics current{.timestamp = 60, .chip = chip};
        SystemMetrics previous{.timestamp = 0, .chip = chip};
        card.show(current, std::vector<SystemMetrics>{previous, current});
    }
};

void hover(Sparkline &chart, double x)
{
    const QPointF place(x, 10);
    QMouseEvent move(QEvent::MouseMove, place, place, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&chart, &move);
}

} // namespace

class TestUtilizationCard : public QObject {
    Q_OBJECT

private slots:
    void showsTheTextsOfItsUnit_data();
    void showsTheTextsOfItsUnit();
    void deniedLoadIsAGap_data();
    void deniedLoadIsAGap();
    void showsCoresForTheCPUOnly();
    void placesItsParts();
    void barsDoNotMoveWhenTheFigureGrows();
    void dimsAnAbsentFigure();
    void chartsTheLoad();
    void showsHoveredValues_data();
    void showsHoveredValues();
    void repaintsOnlyWhatChanged();
    void leavesNoStalePixels_data();
    void leavesNoStalePixels();
    void fitsManyCores_data();
    void fitsManyCores();
};

void TestUtilizationCard::showsTheTextsOfItsUnit_data()
{
    QTest::addColumn<ComputeUnit>("unit");
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("CPU") << ComputeUnit::cpu
                         << QStringList{u"CPU"_s, u"16.69 W · 74°C"_s, u"48%"_s, u"3.27 GHz"_s};
    QTest::newRow("GPU") << ComputeUnit::gpu
                         << QStringList{u"GPU"_s, u"31.62 W · 71°C"_s, u"90%"_s, u"P12"_s};
    QTest::newRow("Neural Engine")
        << ComputeUnit::ane
        << QStringList{u"Neural Engine"_s, u"1.35 W · 68°C"_s, u"14%"_s, u"≈10W max"_s};
}

void TestUtilizationCard::showsTheTextsOfItsUnit()
{
    QFETCH(ComputeUnit, unit);
    Shown shown(unit);
    shown.card.show(scriptedCurrent(), scriptedHistory());
    QTEST(shown.values(), "texts");
}

void TestUtilizationCard::deniedLoadIsAGap_data()
{
    QTest::addColumn<ComputeUnit>("unit");
    QTest::addColumn<DeniedParts>("denied");
    QTest::newRow("CPU without its load") << ComputeUnit::cpu << DeniedParts{.cpuLoad = true};
    QTest::newRow("GPU without its load") << ComputeUnit::gpu << DeniedParts{.gpuLoad = true};
    QTest::newRow("Neural Engine without its watts")
        << ComputeUnit::ane << DeniedParts{.aneWatts = true};
}

/// On a whole chip, whose samples without any reading are charted as 0.
void TestUtilizationCard::deniedLoadIsAGap()
{
    QFETCH(ComputeUnit, unit);
    QFETCH(DeniedParts, denied);
    const std::vector<SystemMetrics> history{
        {.timestamp = 0},
        {.timestamp = 1, .chip = ChipReading()},
        {.timestamp = 2, .chip = ChipReading()},
        {.timestamp = 3, .chip = ChipReading{.denied = denied}}};
    Shown shown(unit);
    shown.card.show(history.back(), history);
    QCOMPARE(shown.card.chart()->shown().series[0].values,
             (std::vector<std::optional<double>>{0, 0, 0, std::nullopt}));
}

void TestUtilizationCard::showsCoresForTheCPUOnly()
{
    Shown cpu(ComputeUnit::cpu);
    cpu.show({.cpuCoreUtilizations = {0.5, 1}});
    QVERIFY(cpu.card.findChild<CoreBars *>()->isVisible());
    QCOMPARE(cpu.card.findChild<CoreBars *>()->shown().values, (std::vector<double>{0.5, 1}));
    cpu.show({});
    QVERIFY(!cpu.card.findChild<CoreBars *>()->isVisible());
    cpu.card.show({}, std::vector<SystemMetrics>());
    QVERIFY(!cpu.card.findChild<CoreBars *>()->isVisible());
    Shown gpu(ComputeUnit::gpu);
    gpu.show({.cpuCoreUtilizations = {0.5, 1}});
    QVERIFY(!gpu.card.findChild<CoreBars *>()->isVisible());
}

void TestUtilizationCard::placesItsParts()
{
    for (const ComputeUnit unit : {ComputeUnit::cpu, ComputeUnit::gpu, ComputeUnit::ane}) {
        Shown shown(unit);
        shown.show({.cpuCoreUtilizations = {0.5, 1}});
        QCOMPARE(shown.card.chart()->geometry(), QRect(16, 110, 368, 100));
    }
    Shown cpu(ComputeUnit::cpu);
    cpu.show({.cpuCoreUtilizations = {0.5, 1}});
    QVERIFY(cpu.card.findChild<CoreBars *>()->x() >= 16 + 96 + 16);
    QCOMPARE(cpu.card.findChild<CoreBars *>()->geometry().right() + 1, 384);
    QCOMPARE(cpu.card.findChild<CoreBars *>()->y(), 46);
    QCOMPARE(cpu.card.findChild<CoreBars *>()->height(), 52);
}

void TestUtilizationCard::barsDoNotMoveWhenTheFigureGrows()
{
    Shown cpu(ComputeUnit::cpu);
    cpu.show({.cpuActiveFraction = 0.01, .cpuCoreUtilizations = {0.5}});
    const QRect before = cpu.card.findChild<CoreBars *>()->geometry();
    cpu.show({.cpuActiveFraction = 1, .cpuCoreUtilizations = {0.5}});
    QCOMPARE(cpu.card.findChild<CoreBars *>()->geometry(), before);
    for (const AccessibleText &text : cpu.card.accessibleTexts())
        QVERIFY(text.value != u"100%"_s || text.place.right() <= before.left());
}

void TestUtilizationCard::dimsAnAbsentFigure()
{
    // The largest red component in the figure.
    const auto strength = [](Shown &shown) {
        const QImage image = rendered(shown.card, 2);
        int most = 0;
        for (double y = 48; y < 76; y += 0.5) {
            for (double x = 14; x < 100; x += 0.5)
                most = std::max(most, pixelAt(image, x, y).red());
        }
        return most;
    };
    Shown shown(ComputeUnit::gpu);
    shown.show({});
    QVERIFY(strength(shown) > 245);
    shown.card.show({}, std::vector<SystemMetrics>());
    QCOMPARE(shown.card.accessibleText(u"Load"_s), u"0%"_s);
    QVERIFY(strength(shown) < 190);
}

void TestUtilizationCard::chartsTheLoad()
{
    Shown shown(ComputeUnit::gpu);
    shown.show({.gpuActiveFraction = 0.5});
    for (const double scale : {1.0, 2.0}) {
        const QImage image = rendered(shown.card, scale);
        // Half of a chart of 100 points at y 110 is filled with the colour at 0.55.
        const QColor below = pixelAt(image, 100, 165);
        QVERIFY(below.red() > 120 && below.blue() < 60);
        const QColor above = pixelAt(image, 100, 150);
        QVERIFY(above.red() < 60);
    }
    // Values beyond the domain are pinned to its edge.
    shown.show({.gpuActiveFraction = 1.7});
    QVERIFY(pixelAt(rendered(shown.card, 1), 100, 112).red() > 120);
    QVERIFY(pixelAt(rendered(shown.card, 1), 100, 107).red() < 60);
}

void TestUtilizationCard::showsHoveredValues_data()
{
    QTest::addColumn<ComputeUnit>("unit");
    QTest::addColumn<QString>("values");
    QTest::newRow("CPU") << ComputeUnit::cpu << u"39%, 13.89W, 3.08GHz"_s;
    QTest::newRow("GPU") << ComputeUnit::gpu << u"90%, 29.92W"_s;
    QTest::newRow("Neural Engine at its ceiling") << ComputeUnit::ane << u"100%, 12.00W"_s;
}

void TestUtilizationCard::showsHoveredValues()
{
    QFETCH(ComputeUnit, unit);
    Shown shown(unit);
    shown.show({.cpuWatts = 13.89,
                .gpuWatts = 29.92,
                .aneWatts = 12,
                .cpuActiveFraction = 0.39,
                .gpuActiveFraction = 0.9,
                .cpuActiveMHz = 3080});
    hover(*shown.card.chart(), 5);
    const QString value = shown.card.chart()->accessibleValue();
    QTEST(value.section(u", "_s, 1), "values");
    QCOMPARE(value.section(u", "_s, 0, 0).size(), 8); // The time of the sample.
    // A sample without a reading shows 0.
    shown.card.show({.timestamp = 60},
                    std::vector<SystemMetrics>{{.timestamp = 0}, {.timestamp = 60}});
    QVERIFY(shown.card.chart()->accessibleValue().contains(u"0%, 0.00W"_s));
}

void TestUtilizationCard::repaintsOnlyWhatChanged()
{
    Shown shown(ComputeUnit::cpu);
    const ChipReading chip{.cpuActiveFraction = 0.4, .cpuActiveMHz = 3000};
    shown.show(chip);
    QCoreApplication::processEvents();
    PaintWatch watch(shown.card);
    shown.show(chip);
    QCoreApplication::processEvents();
    QCOMPARE(watch.region(), QRegion());
    ChipReading other = chip;
    other.cpuActiveMHz = 3100;
    shown.show(other);
    QCoreApplication::processEvents();
    QVERIFY(!watch.region().isEmpty());
    QVERIFY(!watch.region().intersects(QRect(0, 0, 400, 46)));
}

void TestUtilizationCard::leavesNoStalePixels_data()
{
    const ChipReading idle{.cpuCoreUtilizations = std::vector<double>(8, 0)};
    ChipReading busy{.cpuWatts = 16.69,
                     .gpuWatts = 31.62,
                     .aneWatts = 11.35,
                     .cpuActiveFraction = 1,
                     .gpuActiveFraction = 1,
                     .cpuActiveMHz = 3270,
                     .gpuDominantState = u"P12"_s,
                     .cpuCoreUtilizations = std::vector<double>(8, 1),
                     .cpuTempC = 74,
                     .gpuTempC = 101,
                     .aneTempC = 68};
    ChipReading oneCore = busy;
    oneCore.cpuCoreUtilizations[3] = 0.2;
    ChipReading moreCores = busy;
    moreCores.cpuCoreUtilizations.resize(40, 0.5);
    QTest::addColumn<ComputeUnit>("unit");
    QTest::addColumn<ChipReading>("before");
    QTest::addColumn<ChipReading>("after");
    for (const ComputeUnit unit : {ComputeUnit::cpu, ComputeUnit::gpu, ComputeUnit::ane}) {
        const int number = static_cast<int>(unit);
        QTest::addRow("unit %d gets busy", number) << unit << idle << busy;
        QTest::addRow("unit %d gets idle", number) << unit << busy << idle;
    }
    QTest::newRow("one core alone") << ComputeUnit::cpu << busy << oneCore;
    QTest::newRow("another number of cores") << ComputeUnit::cpu << busy << moreCores;
}

void TestUtilizationCard::leavesNoStalePixels()
{
    QFETCH(ComputeUnit, unit);
    QFETCH(ChipReading, before);
    QFETCH(ChipReading, after);
    Shown shown(unit);
    shown.show(before);
    QCOMPARE(stalePixelsAfter([&] { shown.show(after); }, shown.card), QRect());
}

void TestUtilizationCard::fitsManyCores_data()
{
    QTest::addColumn<int>("cores");
    QTest::addColumn<int>("width");
    QTest::addColumn<bool>("fillsTheBand");
    QTest::newRow("192 cores in the narrowest card") << 192 << 286 << true;
    QTest::newRow("192 cores in a wide card") << 192 << 830 << true;
    QTest::newRow("one core stays narrow at the right") << 1 << 286 << false;
}

void TestUtilizationCard::fitsManyCores()
{
    QFETCH(int, cores);
    QFETCH(int, width);
    Shown shown(ComputeUnit::cpu);
    shown.card.resize(width, 176);
    shown.show({.cpuCoreUtilizations = std::vector<double>(static_cast<std::size_t>(cores), 1)});
    const QImage image = rendered(shown.card, 2);
    // Fully busy cores: something blue at the left and at the right end of the band.
    const QRect bars = shown.card.findChild<CoreBars *>()->geometry();
    const auto isBlue = [&](double from, double to) {
        for (double x = from; x < to; x += 0.5) {
            if (pixelAt(image, x, bars.top() + 20).blue() > 90)
                return true;
        }
        return false;
    };
    QTEST(isBlue(bars.left(), bars.left() + 8), "fillsTheBand");
    QVERIFY(isBlue(bars.right() - 8, bars.right() + 1));
}

QTEST_MAIN(TestUtilizationCard)
#include "tst_UtilizationCard.moc"
