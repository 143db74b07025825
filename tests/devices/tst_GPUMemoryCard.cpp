#include "devices/GPUMemoryCard.h"

#include "charts/Sparkline.h"
#include "gallery/ScriptedMachines.h"
#include "gallery/ScriptedSamples.h"
#include "support/Rendering.h"
#include "support/ShownCard.h"

#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

struct Shown : ShownCard<GPUMemoryCard> {
    explicit Shown(const ScriptedMachine &machine) : ShownCard(QSize(617, 262)) { show(machine); }

    void show(const ScriptedMachine &machine)
    {
        card.setHolders(machine.holders);
        card.show(machine.current(), machine.history);
    }

    /// All texts with their names, but for the title and what belongs to the chart.
    QStringList lines() const
    {
        QStringList lines;
        for (const AccessibleText &text : card.accessibleTexts())
            lines.append(text.name.isEmpty() ? text.value : text.name + u": "_s + text.value);
        return lines;
    }
};

/// A machine in whose newest sample something is different.
ScriptedMachine withNow(ScriptedMachine machine,
                        const std::function<void(MachineCoverage &, ChipReading &)> &change)
{
    machine.history.back() = changed(machine.history.back(), change);
    return machine;
}

} // namespace

class TestGPUMemoryCard : public QObject {
    Q_OBJECT

private slots:
    void showsTheMemoryOfTheMachine_data();
    void showsTheMemoryOfTheMachine();
    void chartsNothingWhereNothingWasKnown();
    void showsTheHoveredSample();
    void keepsWhenACardWasAwake();
    void leavesNoStalePixels();
};

void TestGPUMemoryCard::showsTheMemoryOfTheMachine_data()
{
    QTest::addColumn<ScriptedMachine>("machine");
    QTest::addColumn<QStringList>("lines");
    const QString percent = u"GPU memory used in percent: "_s;
    const QString card = u"Graphics card: "_s;
    QTest::newRow("a card: AI, other and free, and who has most")
        << oneCardMinute()
        << QStringList{u"VRAM"_s,
                       percent + u"90"_s,
                       u"Used: 21.59 GB"_s,
                       u"Total: 23.99 GB"_s,
                       u"Largest: llama-server 19.42 GB"_s,
                       card + u"NVIDIA GeForce RTX 4090"_s,
                       u"AI: 20.44 GB"_s,
                       u"Other: 1.15 GB"_s,
                       u"Free: 2.4 GB"_s};
    ScriptedMachine unknownHolders = oneCardMinute();
    unknownHolders.holders.clear();
    QTest::newRow("a card of which nobody knows who uses it")
        << unknownHolders
        << QStringList{u"VRAM"_s,
                       percent + u"90"_s,
                       u"Used: 21.59 GB"_s,
                       u"Total: 23.99 GB"_s,
                       card + u"NVIDIA GeForce RTX 4090"_s,
                       u"In use: 21.59 GB"_s,
                       u"Free: 2.4 GB"_s};
    ScriptedMachine greedy = oneCardMinute();
    greedy.holders[0].aiBytes = gibibytes(900);
    QTest::newRow("processes that claim more than is in use")
        << greedy
        << QStringList{u"VRAM"_s,
                       percent + u"90"_s,
                       u"Used: 21.59 GB"_s,
                       u"Total: 23.99 GB"_s,
                       u"Largest: llama-server 19.42 GB"_s,
                       card + u"NVIDIA GeForce RTX 4090"_s,
                       u"AI: 21.59 GB"_s,
                       u"Other: 0 MB"_s,
                       u"Free: 2.4 GB"_s};
    QTest::newRow("an integrated GPU") << apuMinute()
                                       << QStringList{u"GPU Memory"_s,
                                                      percent + u"69"_s,
                                                      u"Used: 10.96 GB"_s,
                                                      u"Total: 15.81 GB"_s,
                                                      u"In RAM: 10.46 GB, part of Wired"_s,
                                                      card + u"0.5 GB own + 15.31 GB of RAM"_s,
                                                      u"AI: 9.84 GB"_s,
                                                      u"Other: 1.12 GB"_s,
                                                      u"Free: 4.85 GB"_s};
    QTest::newRow("a lower bound") << lowerBoundMinute()
                                   << QStringList{u"VRAM"_s,
                                                  percent + u"≥33"_s,
                                                  u"Used: ≥ 5.2 GB"_s,
                                                  u"Total: 15.9 GB"_s,
                                                  u"Largest: llama-server 5.2 GB"_s,
                                                  card + u"Intel Arc A770"_s,
                                                  u"AI: 5.2 GB"_s};
    QTest::newRow("two cards, one asleep") << unlikeCardsMinute()
                                           << QStringList{u"VRAM"_s,
                                                          percent + u"92"_s,
                                                          u"Used: 22.16 GB"_s,
                                                          u"Total: 24 GB"_s,
                                                          card + u"2 graphics cards"_s,
                                                          u"Memory in use on GPU 0: 22.16"_s,
                                                          u"Memory of GPU 0: 24 GB"_s,
                                                          u"Memory in use on GPU 1: asleep"_s,
                                                          u"Memory of GPU 1: 24 GB"_s,
                                                          u"AI: 21.3 GB"_s,
                                                          u"Other: 880.6 MB"_s,
                                                          u"Free: 1.84 GB"_s};
    const QString sleeps =
        u"The card sleeps and is left asleep; it shows here when something wakes it."_s;
    ScriptedMachine neverAwake = sleepingCardMinute();
    neverAwake.history.erase(neverAwake.history.begin(), neverAwake.history.end() - 5);
    QTest::newRow("a card that was never seen awake")
        << neverAwake
        << QStringList{u"VRAM"_s, percent + u"Asleep"_s, u"Total: 6 GB"_s, sleeps,
                       card + u"NVIDIA GeForce RTX 3060 Laptop GPU"_s};
    const auto denied = [](Coverage coverage) {
        return withNow(oneCardMinute(), [coverage](MachineCoverage &machine, ChipReading &chip) {
            machine.gpus[0].memory = coverage;
            chip.gpus[0].memoryUsed.reset();
        });
    };
    const auto without = [&](const QString &sentence) {
        QStringList lines{u"VRAM"_s, percent + u"–"_s, u"Total: 23.99 GB"_s};
        if (!sentence.isEmpty())
            lines.append(sentence);
        return lines << card + u"NVIDIA GeForce RTX 4090"_s;
    };
    QTest::newRow("nothing to read now") << denied(Coverage::known) << without({});
    QTest::newRow("locked") << denied(Coverage::locked)
                            << without(u"Only root may read how much is in use."_s);
    QTest::newRow("not published") << denied(Coverage::unpublished)
                                   << without(u"The driver does not tell how much is in use."_s);
    QTest::newRow("without the library")
        << denied(Coverage::noLibrary)
        << without(u"NVIDIA’s driver library is missing. It comes with the driver: "
                   u"libnvidia-ml.so.1"_s);
    QTest::newRow("without a total") << withNow(
        oneCardMinute(),
        [](MachineCoverage &machine, ChipReading &) { machine.gpus[0].memoryTotal.reset(); })
                                     << QStringList{u"VRAM"_s,
                                                    percent + u"–"_s,
                                                    u"Used: 21.59 GB"_s,
                                                    u"Largest: llama-server 19.42 GB"_s,
                                                    card + u"NVIDIA GeForce RTX 4090"_s,
                                                    u"AI: 20.44 GB"_s,
                                                    u"Other: 1.15 GB"_s};
}

void TestGPUMemoryCard::showsTheMemoryOfTheMachine()
{
    QFETCH(ScriptedMachine, machine);
    QFETCH(QStringList, lines);
    // The order on the card is that of the test of whole machines; here it is what is said.
    QStringList actual = Shown(machine).lines();
    actual.sort();
    lines.sort();
    QCOMPARE(actual, lines);
}

void TestGPUMemoryCard::chartsNothingWhereNothingWasKnown()
{
    const Shown shown(sleepingCardMinute());
    const auto &values = shown.card.chart()->shown().series.front().values;
    QVERIFY(values.front() && *values.front() > 30);
    QVERIFY(!values.back());
}

void TestGPUMemoryCard::showsTheHoveredSample()
{
    const Shown shown(lowerBoundMinute());
    Sparkline *chart = shown.card.chart();
    chart->setFocus();
    QTest::keyClick(chart, Qt::Key_End);
    QVERIFY2(chart->accessibleValue().contains(u"≥ 5.2 GB"_s),
             qPrintable(chart->accessibleValue()));
}

void TestGPUMemoryCard::keepsWhenACardWasAwake()
{
    const Shown shown(sleepingCardMinute());
    QVERIFY(!shown.text(u"Awake until"_s).value.isEmpty());
}

void TestGPUMemoryCard::leavesNoStalePixels()
{
    Shown shown(oneCardMinute());
    for (const ScriptedMachine &next : {sleepingCardMinute(), fourCardsMinute(), eightCardsMinute(),
                                        twoCardsMinute(), apuMinute()}) {
        QCOMPARE(stalePixelsAfter([&] { shown.show(next); }, shown.card), QRect());
    }
}

QTEST_MAIN(TestGPUMemoryCard)
#include "tst_GPUMemoryCard.moc"
