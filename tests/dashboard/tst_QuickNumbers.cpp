#include "dashboard/QuickNumbers.h"

#include "gallery/ScriptedMachines.h"
#include "gallery/ScriptedSamples.h"
#include "ui/Theme.h"

#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

using Change = std::function<void(MachineCoverage &, ChipReading &)>;

/// "MEM 19%, CPU 23%".
QString texts(const SystemMetrics &sample)
{
    QStringList texts;
    for (const QuickNumber &number : quickNumbers(sample))
        texts.append(number.label + u' ' + number.value);
    return texts.join(u", "_s);
}

SystemMetrics withSystemWatts(const SystemMetrics &sample)
{
    return changed(sample, [](MachineCoverage &machine, ChipReading &chip) {
        machine.systemWatts = Coverage::known;
        machine.systemWattsSource = u"battery"_s;
        chip.systemWatts = 9.5;
    });
}

} // namespace

class TestQuickNumbers : public QObject {
    Q_OBJECT

private slots:
    void areThoseOfTheMachine_data();
    void areThoseOfTheMachine();
    void fadeWhereNothingIsKnown();
    void keepTheirPlacesWhenADigitChanges();
    void noteWhatThereIsNot_data();
    void noteWhatThereIsNot();
};

void TestQuickNumbers::areThoseOfTheMachine_data()
{
    QTest::addColumn<SystemMetrics>("sample");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const ScriptedMachine &machine, const QString &expected,
                        const Change &change = {}) {
        QTest::newRow(name) << (change ? changed(machine.current(), change) : machine.current())
                            << expected;
    };
    QTest::newRow("a whole chip") << scriptedCurrent() << u"MEM 71%, CPU 48%, GPU 90%, PWR 49.7W"_s;
    QTest::newRow("before the first sample")
        << SystemMetrics() << u"MEM 0%, CPU 0%, GPU 0%, PWR 0.0W"_s;
    row("a card, the CPU locked", oneCardMinute(),
        u"MEM 19%, VRAM 90%, CPU 23%, GPU 97%, GPU PWR 318.4W"_s);
    row("an APU", apuMinute(), u"MEM 63%, GPU MEM 69%, CPU 31%, GPU 88%, PWR 41.2W"_s);
    row("four cards", fourCardsMinute(), u"MEM 24%, VRAM 58%, CPU 18%, GPU 62%, PWR 835.5W"_s);
    row("no watts", integratedOnlyMinute(), u"MEM 84%, CPU 64%, GPU 14%"_s);
    row("a card that sleeps", sleepingCardMinute(),
        u"MEM 26%, VRAM zz, CPU 9%, GPU 6%, GPU PWR –"_s);
    row("a card that sleeps alone", sleepingCardMinute(),
        u"MEM 26%, VRAM zz, CPU 9%, GPU zz, GPU PWR –"_s,
        [](MachineCoverage &machine, ChipReading &chip) {
            machine.gpus.erase(machine.gpus.begin());
            chip.gpus.clear();
        });
    row("a lower bound", lowerBoundMinute(),
        u"MEM 19%, VRAM ≥33%, CPU 23%, GPU 97%, GPU PWR 191.1W"_s);
    row("a machine with CPU and memory alone", virtualMachineMinute(), u"MEM 20%, CPU 58%"_s);
    row("nothing that can be read now", oneCardMinute(),
        u"MEM 19%, VRAM –, CPU –, GPU –, GPU PWR –"_s, [](MachineCoverage &, ChipReading &chip) {
            chip.gpus.clear();
            chip.denied.cpuLoad = true;
        });
    row("true zeros", oneCardMinute(), u"MEM 19%, VRAM 0%, CPU 0%, GPU 0%, GPU PWR 0.0W"_s,
        [](MachineCoverage &, ChipReading &chip) {
            chip.cpuActiveFraction = 0;
            chip.gpus[0].activeFraction = 0;
            chip.gpus[0].memoryUsed = 0;
            chip.gpus[0].watts = 0;
        });
}

void TestQuickNumbers::areThoseOfTheMachine()
{
    QFETCH(SystemMetrics, sample);
    QTEST(texts(sample), "expected");
    for (const QuickNumber &number : quickNumbers(sample))
        QVERIFY(!number.name.isEmpty());
}

void TestQuickNumbers::fadeWhereNothingIsKnown()
{
    const std::vector<QuickNumber> numbers = quickNumbers(sleepingCardMinute().current());
    QCOMPARE(numbers[1].color, Theme::withOpacity(Theme::gpu, Theme::absentOpacity));
    QCOMPARE(numbers[3].color, Theme::gpu); // The integrated GPU.
    QCOMPARE(numbers[4].color, Theme::withOpacity(Theme::power, Theme::absentOpacity));
}

void TestQuickNumbers::keepTheirPlacesWhenADigitChanges()
{
    const auto widths = [](const SystemMetrics &sample) {
        QList<double> list;
        for (const QuickNumber &number : quickNumbers(sample))
            list.append(number.minWidth);
        return list;
    };
    QCOMPARE(widths(oneCardMinute().current()), (QList<double>{34, 34, 34, 34, 46}));
    QCOMPARE(widths(apuMinute().current()), (QList<double>{34, 46, 34, 34, 46}));
    QCOMPARE(widths(sleepingCardMinute().current()), (QList<double>{34, 34, 34, 34, 46}));
}

void TestQuickNumbers::noteWhatThereIsNot_data()
{
    QTest::addColumn<SystemMetrics>("sample");
    QTest::addColumn<QString>("note");
    QTest::newRow("a whole chip") << scriptedCurrent() << QString();
    QTest::newRow("a card") << oneCardMinute().current() << QString();
    QTest::newRow("an integrated GPU") << integratedOnlyMinute().current() << QString();
    QTest::newRow("CPU and memory alone")
        << virtualMachineMinute().current() << u"no GPU, watts or temperatures to read here"_s;
    QTest::newRow("the whole machine, where no card of power can show it")
        << withSystemWatts(integratedOnlyMinute().current()) << u"System 9.50 W · battery"_s;
    QTest::newRow("where one can") << withSystemWatts(oneCardMinute().current()) << QString();
}

void TestQuickNumbers::noteWhatThereIsNot()
{
    QFETCH(SystemMetrics, sample);
    QTEST(machineNote(sample), "note");
}

QTEST_MAIN(TestQuickNumbers)
#include "tst_QuickNumbers.moc"
