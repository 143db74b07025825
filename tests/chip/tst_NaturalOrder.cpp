#include "chip/NaturalOrder.h"

#include <QTest>

#include <algorithm>
#include <string>
#include <vector>

using namespace corvane;

class TestNaturalOrder : public QObject {
    Q_OBJECT

private slots:
    void orders_data();
    void orders();
    void sortsMixedNames();
};

void TestNaturalOrder::orders_data()
{
    QTest::addColumn<QByteArray>("left");
    QTest::addColumn<QByteArray>("right");
    QTest::addColumn<int>("order"); // -1: left first, 0: equal, 1: right first

    const auto row = [](const char *name, const char *left, const char *right, int order) {
        QTest::newRow(name) << QByteArray(left) << QByteArray(right) << order;
    };
    row("digits count by value", "P2", "P10", -1);
    row("equal numbers leave the decision to what follows", "P1b", "P1a", 1);
    row("the second number decides", "V10P4", "V10P12", -1);
    row("a prefix comes first", "P1", "P1x", -1);
    row("an empty name comes first", "", "P", -1);
    row("two empty names", "", "", 0);
    row("the same name", "P10", "P10", 0);
    row("leading zeros do not count", "P007", "P7", 0);
    row("a run of zeros is zero", "P000", "P0", 0);
    row("zero comes before one", "P00", "P1", -1);
    row("case does not count", "boost", "BOOST", 0);
    row("letters across cases", "Boost", "active", 1);
    row("a number longer than any integer", "P99999999999999999999998", "P99999999999999999999999",
        -1);
    row("a longer number is larger", "P100000000000000000000", "P99999999999999999999", 1);
    row("digits come before letters", "15", "P1", -1);
    row("a blank comes before digits", "P 1", "P1", -1);
    row("bytes beyond ASCII come last", "z", "\xC3\xA9", -1);
}

void TestNaturalOrder::orders()
{
    QFETCH(QByteArray, left);
    QFETCH(QByteArray, right);
    QFETCH(int, order);
    QCOMPARE(naturallyLess(left.toStdString(), right.toStdString()), order < 0);
    QCOMPARE(naturallyLess(right.toStdString(), left.toStdString()), order > 0);
}

void TestNaturalOrder::sortsMixedNames()
{
    std::vector<std::string> names{"P10", "NO_CLTM", "1500 MHz", "P9", "300 MHz", "P1"};
    std::ranges::sort(names, naturallyLess);
    QCOMPARE(names,
             (std::vector<std::string>{"300 MHz", "1500 MHz", "NO_CLTM", "P1", "P9", "P10"}));
}

QTEST_APPLESS_MAIN(TestNaturalOrder)
#include "tst_NaturalOrder.moc"
