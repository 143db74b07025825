#include "chip/GPUStateTimes.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

using States = std::vector<std::pair<std::string, double>>;

Q_DECLARE_METATYPE(States)

namespace {

GPUStateTimes timesOf(const States &states)
{
    GPUStateTimes times;
    for (const auto &[state, time] : states)
        times.add(state, time);
    return times;
}

/// "P1 0.25, P2 0.75", in the order of the list.
QString textOf(const std::vector<GPUStateShare> &shares)
{
    QStringList parts;
    for (const auto &[state, fraction] : shares)
        parts.append(state + u' ' + QString::number(fraction, 'g', 12));
    return parts.join(u", "_s);
}

/// States "P1" to "Pn", all of the same time.
States equalStates(int n)
{
    States states;
    for (int i = 1; i <= n; ++i)
        states.emplace_back("P" + std::to_string(i), 100);
    return states;
}

} // namespace

class TestGPUStateTimes : public QObject {
    Q_OBJECT

private slots:
    void findsTheDominantState_data();
    void findsTheDominantState();
    void listsShares_data();
    void listsShares();
};

void TestGPUStateTimes::findsTheDominantState_data()
{
    QTest::addColumn<States>("states");
    QTest::addColumn<QByteArray>("dominant");
    QTest::newRow("none") << States{} << QByteArray();
    QTest::newRow("the longest time") << States{{"P1", 10}, {"P2", 15}} << QByteArray("P2");
    QTest::newRow("of equals the first") << States{{"P3", 10}, {"P1", 10}} << QByteArray("P3");
    QTest::newRow("a single time, not the sum of a name")
        << States{{"P1", 10}, {"P1", 10}, {"P2", 15}} << QByteArray("P2");
    QTest::newRow("a state without time is not dominant") << States{{"P1", 0}} << QByteArray();
}

void TestGPUStateTimes::findsTheDominantState()
{
    QFETCH(States, states);
    QTEST(QByteArray::fromStdString(timesOf(states).dominant()), "dominant");
}

void TestGPUStateTimes::listsShares_data()
{
    QTest::addColumn<States>("states");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char *name, States states, const QString &expected) {
        QTest::newRow(name) << std::move(states) << expected;
    };
    row("shares of the active time", {{"P1", 75}, {"P2", 25}}, u"P1 0.75, P2 0.25"_s);
    row("no active time", {{"P1", 0}}, u""_s);
    row("natural order, not that of the sizes or of the letters",
        {{"P10", 50}, {"P2", 30}, {"P1", 20}}, u"P1 0.2, P2 0.3, P10 0.5"_s);
    row("exactly 1 % stays, less goes", {{"P1", 9801}, {"P2", 100}, {"P3", 99}},
        u"P1 0.9801, P2 0.01"_s);
    row("the same name is one entry", {{"P1", 10}, {"P2", 20}, {"P1", 70}}, u"P1 0.8, P2 0.2"_s);
    row("names are one when they are the same to the letter", {{"p1", 60}, {"P1", 40}},
        u"p1 0.6, P1 0.4"_s);
    row("names that are equal in natural order: the larger share first",
        {{"P01", 20}, {"P1", 50}, {"P001", 30}}, u"P1 0.5, P001 0.3, P01 0.2"_s);
    row("equal names and equal shares: the order of appearance",
        {{"P01", 25}, {"P001", 25}, {"P1", 50}}, u"P1 0.5, P01 0.25, P001 0.25"_s);
    row("names longer than a short text",
        {{"A performance state of 1500 MHz", 1}, {"A performance state of 300 MHz", 3}},
        u"A performance state of 300 MHz 0.75, A performance state of 1500 MHz 0.25"_s);
    row("names that are not ASCII", {{"Stufe zw\xC3\xB6lf", 1}}, u"Stufe zwölf 1"_s);
    row("ten states are all listed", equalStates(10),
        u"P1 0.1, P2 0.1, P3 0.1, P4 0.1, P5 0.1, P6 0.1, P7 0.1, P8 0.1, P9 0.1, P10 0.1"_s);
    States eleven = equalStates(11);
    eleven[2].second = 50; // P3 is the smallest of 1050.
    row("of eleven the smallest goes", eleven,
        u"P1 0.0952380952381, P2 0.0952380952381, P4 0.0952380952381, P5 0.0952380952381, "
        "P6 0.0952380952381, P7 0.0952380952381, P8 0.0952380952381, P9 0.0952380952381, "
        "P10 0.0952380952381, P11 0.0952380952381"_s);
    row("of twelve equal ones the last to appear go", equalStates(12),
        u"P1 0.0833333333333, P2 0.0833333333333, P3 0.0833333333333, P4 0.0833333333333, "
        "P5 0.0833333333333, P6 0.0833333333333, P7 0.0833333333333, P8 0.0833333333333, "
        "P9 0.0833333333333, P10 0.0833333333333"_s);
    row("a place is taken when a name appears, even without time",
        {{"P01", 0}, {"P1", 50}, {"P01", 50}}, u"P01 0.5, P1 0.5"_s);
}

void TestGPUStateTimes::listsShares()
{
    QFETCH(States, states);
    QTEST(textOf(timesOf(states).shares()), "expected");
}

QTEST_APPLESS_MAIN(TestGPUStateTimes)
#include "tst_GPUStateTimes.moc"
