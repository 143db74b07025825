#include "dashboard/DashboardLayout.h"
#include "gallery/ScriptedMachines.h"

#include <QTest>

#include <map>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

DashboardGrid ofWhole()
{
    return dashboardGrid({});
}

QString nameOf(DashboardCard card)
{
    const std::map<DashboardCard, QString> names{
        {DashboardCard::memory, u"memory"_s},    {DashboardCard::gpuMemory, u"vram"_s},
        {DashboardCard::power, u"wide power"_s}, {DashboardCard::smallPower, u"power"_s},
        {DashboardCard::cpu, u"cpu"_s},          {DashboardCard::gpu, u"gpu"_s},
        {DashboardCard::gpus, u"gpus"_s},        {DashboardCard::npu, u"npu"_s},
        {DashboardCard::workloads, u"ai"_s},     {DashboardCard::processes, u"top"_s}};
    return names.at(card);
}

/// "memory 2, cpu, gpu / ai, top": the cards of each row, with the columns of those that have
/// several.
QString inWords(const DashboardGrid &grid)
{
    QStringList rows;
    for (const DashboardRow &row : grid) {
        QStringList cells;
        for (const auto &[card, columns] : row.cells) {
            const QString width = columns > 1 ? u" %1"_s.arg(columns) : QString();
            cells.append(nameOf(card) + width);
        }
        rows.append(cells.join(u", "_s));
    }
    return rows.join(u" / "_s);
}

/// A machine of which nothing but its CPU is known.
MachineCoverage bare()
{
    return {.isWhole = false};
}

MachineCoverage withNPU(MachineCoverage machine, Coverage load = Coverage::known)
{
    machine.npuLoad = load;
    return machine;
}

MachineCoverage withoutWatts(MachineCoverage machine)
{
    machine.cpuWatts = Coverage::locked;
    for (GPUCoverage &gpu : machine.gpus)
        gpu.watts = Coverage::unpublished;
    return machine;
}

MachineCoverage withCPUWatts(MachineCoverage machine, Coverage watts = Coverage::known)
{
    machine.cpuWatts = watts;
    return machine;
}

MachineCoverage withGPUs(MachineCoverage machine, Coverage coverage)
{
    for (GPUCoverage &gpu : machine.gpus)
        gpu.load = gpu.watts = gpu.memory = coverage;
    return machine;
}

} // namespace

class TestDashboardLayout : public QObject {
    Q_OBJECT

private slots:
    void choosesTheCards_data();
    void choosesTheCards();
    void keepsTheCardsOfASleepingCard();
    void meetsTheEdgesOfHalves_data();
    void meetsTheEdgesOfHalves();
    void distributesTheHeightOfTwoRows_data();
    void distributesTheHeightOfTwoRows();
    void distributesTheHeight_data();
    void distributesTheHeight();
    void fillsTheWindow_data();
    void fillsTheWindow();
    void placesCardsInTheSmallestWindow();
    void snapsSharesToDevicePixels_data();
    void snapsSharesToDevicePixels();
};

void TestDashboardLayout::choosesTheCards_data()
{
    QTest::addColumn<MachineCoverage>("machine");
    QTest::addColumn<QString>("cards");
    const MachineCoverage one = oneCardMinute().coverage();
    const MachineCoverage four = fourCardsMinute().coverage();
    const MachineCoverage integrated = integratedOnlyMinute().coverage();
    const auto row = [](const char *name, const MachineCoverage &machine, const QString &rows) {
        QTest::newRow(name) << machine << rows + u" / ai, top"_s;
    };
    row("a whole chip", {}, u"memory, wide power / cpu, gpu, npu"_s);
    row("one graphics card", one, u"memory, vram / cpu, gpu, power"_s);
    row("a graphics card and an NPU", withNPU(one), u"memory, vram / cpu, gpu, npu, power"_s);
    row("an NPU without a published load has a card", withNPU(one, Coverage::unpublished),
        u"memory, vram / cpu, gpu, npu, power"_s);
    row("a card beside an integrated GPU counts alone", sleepingCardMinute().coverage(),
        u"memory, vram / cpu, gpu, power"_s);
    row("an APU and its NPU", apuMinute().coverage(), u"memory, vram / cpu, gpu, npu, power"_s);
    row("two graphics cards", twoCardsMinute().coverage(), u"memory, vram / cpu, power, gpus 2"_s);
    row("four graphics cards", four, u"memory, vram / cpu, power, gpus 2"_s);
    row("eight graphics cards", eightCardsMinute().coverage(),
        u"memory, vram / cpu, power, gpus 2"_s);
    row("several cards and an NPU", withNPU(four), u"memory, vram, power / cpu, npu, gpus 2"_s);
    row("a card without watts", withoutWatts(one), u"memory, vram / cpu, gpu"_s);
    row("a card and an NPU without watts", withNPU(withoutWatts(one)),
        u"memory, vram / cpu, gpu, npu"_s);
    row("several cards without watts", withoutWatts(four), u"memory, vram / cpu, gpus"_s);
    row("several cards and an NPU without watts", withNPU(withoutWatts(four)),
        u"memory, vram / cpu, npu, gpus 2"_s);
    row("an integrated GPU without memory figures, and watts", withCPUWatts(integrated),
        u"memory, wide power / cpu, gpu"_s);
    row("the same and an NPU", withNPU(withCPUWatts(integrated)),
        u"memory, wide power / cpu, gpu, npu"_s);
    row("an integrated GPU without memory figures or watts", integrated, u"memory 2, cpu, gpu"_s);
    row("the same with an NPU", withNPU(integrated), u"memory, cpu / gpu, npu"_s);
    row("watts without a GPU", withCPUWatts(bare()), u"memory 2, cpu, power"_s);
    row("locked watts without a GPU", withCPUWatts(bare(), Coverage::locked), u"memory, cpu"_s);
    row("watts and an NPU without a GPU", withNPU(withCPUWatts(bare())),
        u"memory, wide power / cpu, npu"_s);
    row("an NPU alone", withNPU(bare()), u"memory 2, cpu, npu"_s);
    row("the CPU alone", bare(), u"memory, cpu"_s);
}

void TestDashboardLayout::choosesTheCards()
{
    QFETCH(MachineCoverage, machine);
    QTEST(inWords(dashboardGrid(machine)), "cards");
}

/// Nothing moves when a card falls asleep or waits for a restart of the machine.
void TestDashboardLayout::keepsTheCardsOfASleepingCard()
{
    for (const ScriptedMachine &machine : {oneCardMinute(), twoCardsMinute(), fourCardsMinute()}) {
        const MachineCoverage &awake = machine.coverage();
        for (const Coverage coverage : {Coverage::asleep, Coverage::newDriver, Coverage::noLibrary})
            QCOMPARE(inWords(dashboardGrid(withGPUs(awake, coverage))),
                     inWords(dashboardGrid(awake)));
    }
}

void TestDashboardLayout::meetsTheEdgesOfHalves_data()
{
    QTest::addColumn<QSize>("window");
    QTest::newRow("smallest") << DashboardLayout::minimum;
    QTest::newRow("default") << QSize(1280, 900);
    QTest::newRow("odd") << QSize(1023, 801);
    QTest::newRow("large") << QSize(2560, 1440);
}

/// Cards neither overlap nor leave the window, and the second half of every row begins where that
/// of the last row does, in rows of halves and quarters.
void TestDashboardLayout::meetsTheEdgesOfHalves()
{
    QFETCH(QSize, window);
    for (const ScriptedMachine &machine : allScriptedMachines()) {
        const DashboardGrid grid = dashboardGrid(machine.coverage());
        const DashboardLayout layout = dashboardLayout(window, grid);
        const double half = layout.card(DashboardCard::processes).x();
        std::size_t next = 0;
        for (const DashboardRow &row : grid) {
            int column = 0;
            for (const auto &[card, columns] : row.cells) {
                const QRectF place = layout.cards[next++].rect;
                QVERIFY(QRectF(16, 64, window.width() - 32, window.height() - 80).contains(place));
                if (row.columns() % 2 == 0 && column == row.columns() / 2)
                    QCOMPARE(place.x(), half);
                column += columns;
            }
            QCOMPARE(layout.cards[next - 1].rect.right(), window.width() - 16.0);
        }
        QCOMPARE(layout.cards.back().rect.bottom(), window.height() - 16.0);
    }
}

void TestDashboardLayout::distributesTheHeightOfTwoRows_data()
{
    QTest::addColumn<int>("window");
    QTest::addColumn<QList<int>>("rows");
    QTest::newRow("at the usual height") << 900 << QList<int>{423, 383};
    QTest::newRow("in the smallest window") << 760 << QList<int>{330, 336};
    QTest::newRow("in a large window") << 1440 << QList<int>{783, 563};
}

void TestDashboardLayout::distributesTheHeightOfTwoRows()
{
    QFETCH(int, window);
    const std::vector<int> rows = dashboardRowHeights(window, 2);
    QTEST(QList<int>(rows.begin(), rows.end()), "rows");
}

void TestDashboardLayout::distributesTheHeight_data()
{
    QTest::addColumn<int>("window");
    QTest::addColumn<QList<int>>("rows");
    QTest::newRow("natural") << 888 << QList<int>{258, 222, 300};
    QTest::newRow("a surplus goes to all rows") << 900 << QList<int>{262, 226, 304};
    QTest::newRow("the third row takes the remainder") << 890 << QList<int>{258, 222, 302};
    QTest::newRow("a large window") << 1440 << QList<int>{442, 406, 484};
    QTest::newRow("the second row shrinks first") << 868 << QList<int>{258, 202, 300};
    QTest::newRow("down to its minimum") << 842 << QList<int>{258, 176, 300};
    QTest::newRow("then the first") << 832 << QList<int>{248, 176, 300};
    QTest::newRow("down to its minimum too") << 820 << QList<int>{236, 176, 300};
    QTest::newRow("then the third") << 800 << QList<int>{236, 176, 280};
    QTest::newRow("the smallest window") << 760 << QList<int>{236, 176, 240};
    QTest::newRow("not below the minimums") << 500 << QList<int>{236, 176, 240};
}

void TestDashboardLayout::distributesTheHeight()
{
    QFETCH(int, window);
    const std::vector<int> rows = dashboardRowHeights(window, 3);
    QTEST(QList<int>(rows.begin(), rows.end()), "rows");
}

void TestDashboardLayout::fillsTheWindow_data()
{
    QTest::addColumn<QSize>("window");
    QTest::newRow("smallest") << DashboardLayout::minimum;
    QTest::newRow("default") << QSize(1280, 900);
    QTest::newRow("odd") << QSize(1023, 801);
    QTest::newRow("large") << QSize(2560, 1440);
}

void TestDashboardLayout::fillsTheWindow()
{
    QFETCH(QSize, window);
    const DashboardLayout layout = dashboardLayout(window, ofWhole());
    QCOMPARE(layout.header, QRect(16, 16, window.width() - 32, 34));
    for (const DashboardCard last :
         {DashboardCard::power, DashboardCard::npu, DashboardCard::processes})
        QCOMPARE(layout.card(last).right(), window.width() - 16.0);
    for (const DashboardCard first :
         {DashboardCard::memory, DashboardCard::cpu, DashboardCard::workloads})
        QCOMPARE(layout.card(first).x(), 16.0);
    QCOMPARE(layout.card(DashboardCard::processes).bottom(), window.height() - 16.0);
    QCOMPARE(layout.card(DashboardCard::memory).y(), 16.0 + 34 + 14);

    // Neighbours keep 14 from each other, and share their row evenly but for rounding.
    const QRectF cpu = layout.card(DashboardCard::cpu);
    const QRectF gpu = layout.card(DashboardCard::gpu);
    const QRectF ane = layout.card(DashboardCard::npu);
    QVERIFY(qAbs(gpu.x() - cpu.right() - 14) <= 1 && qAbs(ane.x() - gpu.right() - 14) <= 1);
    QVERIFY(qAbs(gpu.width() - cpu.width()) <= 1 && qAbs(ane.width() - gpu.width()) <= 1);
    QCOMPARE(cpu.y(), layout.card(DashboardCard::memory).bottom() + 14);
}

void TestDashboardLayout::placesCardsInTheSmallestWindow()
{
    const DashboardLayout layout = dashboardLayout(DashboardLayout::minimum, ofWhole());
    QCOMPARE(layout.card(DashboardCard::memory), QRectF(16, 64, 437, 236));
    QCOMPARE(layout.card(DashboardCard::power), QRectF(467, 64, 437, 236));
    QCOMPARE(layout.card(DashboardCard::cpu).y(), 314.0);
    QCOMPARE(layout.card(DashboardCard::processes), QRectF(467, 504, 437, 240));
}

void TestDashboardLayout::snapsSharesToDevicePixels_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<QRectF>("cpu");
    QTest::addColumn<QRectF>("gpu");
    QTest::addColumn<QRectF>("npu");
    QTest::newRow("scale 1") << 1.0 << QRectF(16, 340, 407, 226) << QRectF(437, 340, 406, 226)
                             << QRectF(857, 340, 407, 226);
    QTest::newRow("scale 1.25") << 1.25 << QRectF(16, 340, 406.4, 226.4)
                                << QRectF(436.8, 340, 406.4, 226.4)
                                << QRectF(857.6, 340, 406.4, 226.4);
    QTest::newRow("scale 2") << 2.0 << QRectF(16, 340, 406.5, 226) << QRectF(436.5, 340, 407, 226)
                             << QRectF(857.5, 340, 406.5, 226);
}

void TestDashboardLayout::snapsSharesToDevicePixels()
{
    QFETCH(double, scale);
    const DashboardLayout layout = dashboardLayout({1280, 900}, ofWhole(), scale);
    QTEST(layout.card(DashboardCard::cpu), "cpu");
    QTEST(layout.card(DashboardCard::gpu), "gpu");
    QTEST(layout.card(DashboardCard::npu), "npu");
}

QTEST_APPLESS_MAIN(TestDashboardLayout)
#include "tst_DashboardLayout.moc"
