#include "devices/SmallPowerCard.h"

#include "charts/Sparkline.h"
#include "controls/InfoButton.h"
#include "controls/InfoPopover.h"
#include "gallery/ScriptedMachines.h"
#include "support/Rendering.h"
#include "support/ShownCard.h"

#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

constexpr int third = 406; ///< Widths of the card.
constexpr int quarter = 212;

struct Shown : ShownCard<SmallPowerCard> {
    explicit Shown(const ScriptedMachine &machine, int width = third) : ShownCard(QSize(width, 226))
    {
        show(machine);
    }

    void show(const ScriptedMachine &machine) { card.show(machine.current(), machine.history); }

    /// What it says beside its title.
    QStringList lines() const
    {
        QStringList lines;
        for (const AccessibleText &text : card.accessibleTexts()) {
            if (text.value != u"Power"_s)
                lines.append(text.name.isEmpty() ? text.value : text.name + u": "_s + text.value);
        }
        return lines;
    }
};

/// With the watts of the whole machine.
ScriptedMachine withSystem(const ScriptedMachine &machine, double watts)
{
    ScriptedMachine changed = machine.with([](MachineCoverage &coverage) {
        coverage.systemWatts = Coverage::known;
        coverage.systemWattsSource = u"battery"_s;
    });
    changed.history.back().chip->systemWatts = watts;
    return changed;
}

} // namespace

class TestSmallPowerCard : public QObject {
    Q_OBJECT

private slots:
    void showsThePowerOfTheMachine_data();
    void showsThePowerOfTheMachine();
    void addsNothingOfTheWholeMachine();
    void showsTheHoveredSample();
    void tellsWhyInItsToolTip();
    void tellsTheEnergyOfTheDay_data();
    void tellsTheEnergyOfTheDay();
    void leavesNoStalePixels();
};

void TestSmallPowerCard::showsThePowerOfTheMachine_data()
{
    QTest::addColumn<ScriptedMachine>("machine");
    QTest::addColumn<int>("width");
    QTest::addColumn<QStringList>("lines");
    const QStringList hint{u"Only root may read CPU watts."_s, u"tells how to open them."_s};
    const QStringList locked{u"Peak: peak 321.3 W"_s, u"Power in watts: 318"_s,
                             u"Sum of: GPU only"_s, u"Power of GPU: 318.42"_s,
                             u"Power of CPU: locked"_s};
    QTest::newRow("a card, the CPU locked, with how to open it")
        << oneCardMinute() << third << locked + hint;
    QTest::newRow("the same where the hint has no room") << oneCardMinute() << quarter << locked;
    QTest::newRow("a package and its parts")
        << apuMinute() << quarter
        << QStringList{u"Peak: peak 40.7 W"_s,     u"Power in watts: 41"_s,
                       u"Sum of: whole package"_s, u"Power of CPU: 9.84"_s,
                       u"Power of GPU: 21.63"_s,   u"Power of NPU: 1.35"_s,
                       u"Power of Rest: 8.38"_s};
    QTest::newRow("the whole machine on a line of its own")
        << withSystem(apuMinute(), 52.3) << third
        << QStringList{u"Peak: peak 40.7 W"_s,     u"Power in watts: 41"_s,
                       u"Sum of: whole package"_s, u"Power of CPU: 9.84"_s,
                       u"Power of GPU: 21.63"_s,   u"Power of NPU: 1.35"_s,
                       u"Power of Rest: 8.38"_s,   u"System · battery: 52.30"_s};
    QTest::newRow("which takes the place of the hint")
        << withSystem(oneCardMinute(), 402) << third
        << locked + QStringList{u"System · battery: 402.00"_s};
    QTest::newRow("a card that sleeps")
        << sleepingCardMinute() << third
        << QStringList{u"Peak: peak 10.5 W"_s, u"Power in watts: –"_s, u"Sum of: nothing to read"_s,
                       u"Power of GPU: asleep"_s, u"Power of CPU: locked"_s}
            + hint;
    QTest::newRow("a kilowatt and more: without a fraction")
        << eightCardsMinute() << quarter
        << QStringList{u"Peak: peak 1532.1 W"_s, u"Power in watts: 1536"_s,
                       u"Sum of: CPU and GPUs"_s, u"Power of CPU: 96.40"_s,
                       u"Power of GPU: 1440"_s};
}

void TestSmallPowerCard::showsThePowerOfTheMachine()
{
    QFETCH(ScriptedMachine, machine);
    QFETCH(int, width);
    QFETCH(QStringList, lines);
    QStringList actual = Shown(machine, width).lines();
    actual.sort();
    lines.sort();
    QCOMPARE(actual, lines);
}

void TestSmallPowerCard::addsNothingOfTheWholeMachine()
{
    const Shown without(apuMinute());
    const Shown with(withSystem(apuMinute(), 900));
    QCOMPARE(with.text(u"Power in watts"_s).value, without.text(u"Power in watts"_s).value);
    QCOMPARE(with.text(u"Peak"_s).value, without.text(u"Peak"_s).value);
    QCOMPARE(with.card.chart()->shown().series.size(), std::size_t(4));
    QCOMPARE(with.card.chart()->shown().yDomain, without.card.chart()->shown().yDomain);
}

void TestSmallPowerCard::showsTheHoveredSample()
{
    const Shown awake(fourCardsMinute());
    const QString pill = awake.card.chart()->accessibleValue();
    for (const QString &part : {u"835.53 W"_s, u"CPU"_s, u"96.40"_s, u"GPU"_s, u"739.13"_s})
        QVERIFY2(pill.contains(part), qPrintable(pill));
    const Shown asleep(sleepingCardMinute());
    const QString nothing = asleep.card.chart()->accessibleValue();
    QVERIFY2(nothing.contains(u"–"_s) && !nothing.contains(u"0.00"_s), qPrintable(nothing));
}

void TestSmallPowerCard::tellsWhyInItsToolTip()
{
    const Shown shown(sleepingCardMinute());
    QCOMPARE(
        shown.card.accessibleDescription(),
        u"CPU watts: locked, only root may read this.\n"
        "Watts of NVIDIA GeForce RTX 3060 Laptop GPU: the device sleeps and is left asleep."_s);
}

void TestSmallPowerCard::tellsTheEnergyOfTheDay_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<QString>("stat");
    QTest::newRow("with the time measured")
        << third << u"peak 40.7 W · 412 Wh today, 7 h 12 min measured"_s;
    QTest::newRow("where that has no room") << 320 << u"peak 40.7 W · 412 Wh today"_s;
    QTest::newRow("where nothing of it has room") << quarter << u"peak 40.7 W"_s;
}

void TestSmallPowerCard::tellsTheEnergyOfTheDay()
{
    QFETCH(const int, width);
    Shown shown(apuMinute(), width);
    shown.card.showEnergy(
        {.days = {{QDate(2026, 6, 10), {.seconds = 25'920, .all = 412 * 3'600}}}});
    shown.show(apuMinute());
    QTEST(shown.text(u"Peak"_s).value, "stat");
    const QString whole = u"412 Wh today, 7 h 12 min measured"_s;
    QVERIFY(shown.card.accessibleDescription().contains(whole));
    auto *button = shown.card.findChild<InfoButton *>();
    button->click();
    QVERIFY(button->popover());
    QVERIFY(button->popover()->accessibleTexts().back().value.contains(u"Wed 10 Jun"_s));
}

void TestSmallPowerCard::leavesNoStalePixels()
{
    Shown shown(oneCardMinute());
    for (const ScriptedMachine &next :
         {withSystem(oneCardMinute(), 402), apuMinute(), sleepingCardMinute(), oneCardMinute()})
        QCOMPARE(stalePixelsAfter([&] { shown.show(next); }, shown.card), QRect());
}

QTEST_MAIN(TestSmallPowerCard)
#include "tst_SmallPowerCard.moc"
