#include "devices/GPUCard.h"

#include "charts/Sparkline.h"
#include "gallery/ScriptedMachines.h"
#include "support/Rendering.h"
#include "support/ShownCard.h"

#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

struct Shown : ShownCard<GPUCard> {
    explicit Shown(const ScriptedMachine &machine) : ShownCard(QSize(617, 226)) { show(machine); }

    void show(const ScriptedMachine &machine) { card.show(machine.current(), machine.history); }

    /// Loads and what stands below them.
    QStringList columns() const
    {
        QStringList columns;
        for (int index = 0;; ++index) {
            const QString load = text(u"Load of GPU %1"_s.arg(index)).value;
            if (load.isEmpty())
                return columns;
            columns.append(load + u' '
                           + text(u"Power and temperature of GPU %1"_s.arg(index)).value);
        }
    }
};

} // namespace

/// The card of several GPUs.
class TestGPUCard : public QObject {
    Q_OBJECT

private slots:
    void hasAColumnForEachGPU_data();
    void hasAColumnForEachGPU();
    void namesTheReasonThatAllShare();
    void chartsEachGPU();
    void tellsWhatHoldsAGPUBack();
    void followsTheMachine();
    void leavesNoStalePixels();
};

void TestGPUCard::hasAColumnForEachGPU_data()
{
    QTest::addColumn<ScriptedMachine>("machine");
    QTest::addColumn<QString>("sum");
    QTest::addColumn<QStringList>("columns");
    QTest::newRow("two alike: name, watts and temperature in one line")
        << twoCardsMinute() << u"455.31 W · 72°C"_s
        << QStringList{u"52% GPU 0 · 231 W · 67°C"_s, u"49% GPU 1 · 224 W · 72°C"_s};
    QTest::newRow("two unlike, one asleep: their names")
        << unlikeCardsMinute() << u"231.19 W · 67°C"_s
        << QStringList{u"52% RTX 3090 · 231 W · 67°C"_s, u"Asleep RX 7900 XTX"_s};
    QTest::newRow("four, of which one rests")
        << fourCardsMinute() << u"739.13 W · 81°C"_s
        << QStringList{u"94% 268 W · 78°C"_s, u"93% 262 W · 81°C"_s, u"61% 187 W · 70°C"_s,
                       u"0% 22 W · 36°C"_s};
    ScriptedMachine blind = twoCardsMinute();
    blind.history.back().chip->gpus.pop_back();
    QTest::newRow("one that could not be read now")
        << blind << u"231.19 W · 67°C"_s
        << QStringList{u"52% GPU 0 · 231 W · 67°C"_s, u"– GPU 1"_s};
    ScriptedMachine untold = blind.with([](MachineCoverage &machine) {
        machine.gpus[1].load = machine.gpus[1].watts = Coverage::unpublished;
    });
    QTest::newRow("one whose driver tells nothing")
        << untold << u"231.19 W · 67°C"_s
        << QStringList{u"52% GPU 0 · 231 W · 67°C"_s, u"– GPU 1 · not published"_s};
}

void TestGPUCard::hasAColumnForEachGPU()
{
    QFETCH(ScriptedMachine, machine);
    const Shown shown(machine);
    QTEST(shown.text(u"Power and temperature"_s).value, "sum");
    QTEST(shown.columns(), "columns");
    QCOMPARE(shown.text(u"GPUs"_s).value, QString::number(shown.columns().size()));
}

void TestGPUCard::namesTheReasonThatAllShare()
{
    const Shown shown(twoCardsMinute().with([](MachineCoverage &machine) {
        for (GPUCoverage &gpu : machine.gpus)
            gpu.load = gpu.watts = gpu.memory = Coverage::newDriver;
    }));
    QCOMPARE(shown.columns(), QStringList());
    QVERIFY(shown.values().contains(u"The driver and its library differ"_s));
    QVERIFY(shown.values().contains(u"2 × NVIDIA GeForce RTX 3090"_s));
    QVERIFY(!shown.card.chart(0)->isVisible());
}

void TestGPUCard::chartsEachGPU()
{
    Shown shown(unlikeCardsMinute());
    const SparklineData &awake = shown.card.chart(0)->shown();
    const SparklineData &slept = shown.card.chart(1)->shown();
    QCOMPARE(awake.series.front().values.back(), std::optional(52.0));
    QVERIFY(slept.series.front().values.front());
    QVERIFY(!slept.series.front().values.back()); // A gap, not a line at 0.
    shown.show(eightCardsMinute());
    QCOMPARE(shown.columns().size(), 8);
    QVERIFY(!shown.card.chart(7)->isVisible());
}

void TestGPUCard::tellsWhatHoldsAGPUBack()
{
    ScriptedMachine machine = twoCardsMinute();
    machine.history.back().chip->gpus[1].limit = GPULimit::temperature;
    const Shown shown(machine);
    const QString note = u"GPU 1, NVIDIA GeForce RTX 3090: slowed down by its temperature."_s;
    QVERIFY(shown.card.toolTip().contains(note));
    QCOMPARE(shown.card.accessibleDescription(), note);
}

void TestGPUCard::followsTheMachine()
{
    Shown shown(fourCardsMinute());
    shown.show(twoCardsMinute());
    QCOMPARE(shown.columns().size(), 2);
    QVERIFY(!shown.card.chart(3)->isVisible());
    shown.show(fourCardsMinute());
    QCOMPARE(shown.columns().size(), 4);
    QVERIFY(shown.card.chart(3)->isVisible());
}

void TestGPUCard::leavesNoStalePixels()
{
    Shown shown(fourCardsMinute());
    for (const ScriptedMachine &next :
         {unlikeCardsMinute(), eightCardsMinute(), twoCardsMinute()}) {
        QCOMPARE(stalePixelsAfter([&] { shown.show(next); }, shown.card), QRect());
    }
}

QTEST_MAIN(TestGPUCard)
#include "tst_GPUCard.moc"
