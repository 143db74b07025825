#include "ui/NumberText.h"

#include <QLocale>
#include <QTest>

#include <limits>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestNumberText : public QObject {
    Q_OBJECT

private slots:
    void rounds_data();
    void rounds();
    void appendsTheUnit();
    void usesAPointInEveryLocale();
};

void TestNumberText::rounds_data()
{
    QTest::addColumn<double>("number");
    QTest::addColumn<int>("fractionDigits");
    QTest::addColumn<QString>("expected");
    QTest::newRow("down") << 12.4 << 0 << u"12"_s;
    QTest::newRow("up") << 12.6 << 0 << u"13"_s;
    QTest::newRow("a tie down to even") << 12.5 << 0 << u"12"_s;
    QTest::newRow("a tie up to even") << 13.5 << 0 << u"14"_s;
    QTest::newRow("a tie of tenths") << 0.25 << 1 << u"0.2"_s;
    QTest::newRow("a tie of hundredths") << 0.375 << 2 << u"0.38"_s;
    QTest::newRow("another tie of hundredths") << 1.125 << 2 << u"1.12"_s;
    QTest::newRow("a tie of negative numbers") << -2.5 << 0 << u"-2"_s;
    // The doubles nearest to 0.15, 0.35 and 1.005 lie below these.
    QTest::newRow("just below what looks like a tie") << 0.15 << 1 << u"0.1"_s;
    QTest::newRow("the same with another digit") << 0.35 << 1 << u"0.3"_s;
    QTest::newRow("the same with hundredths") << 1.005 << 2 << u"1.00"_s;
    QTest::newRow("just above what looks like a tie") << 0.45 << 1 << u"0.5"_s;
    QTest::newRow("zeros are kept") << 3.0 << 2 << u"3.00"_s;
    QTest::newRow("zero") << 0.0 << 1 << u"0.0"_s;
    QTest::newRow("beyond 64 bits") << 1e20 << 0 << u"100000000000000000000"_s;
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << 1 << u"nan"_s;
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << 1 << u"inf"_s;
}

void TestNumberText::rounds()
{
    QFETCH(double, number);
    QFETCH(int, fractionDigits);
    QTEST(fixedText(number, fractionDigits), "expected");
}

void TestNumberText::appendsTheUnit()
{
    QCOMPARE(percentText(70.6), u"71%"_s);
    QCOMPARE(spacedPercentText(70.6), u"71 %"_s);
    QCOMPARE(wattsText(16.694, 2), u"16.69 W"_s);
    QCOMPARE(tightWattsText(49.66, 1), u"49.7W"_s);
    QCOMPARE(celsiusText(73.8), u"74°C"_s);
    QCOMPARE(frequencyText(3268), u"3.27 GHz"_s);
    QCOMPARE(frequencyText(996.4), u"996 MHz"_s);
    QCOMPARE(gigahertzText(3268), u"3.27 GHz"_s);
    QCOMPARE(gigahertzText(450), u"0.45 GHz"_s);
    for (const QString &text :
         {percentText({}), spacedPercentText({}), wattsText({}, 2), tightWattsText({}, 0)})
        QCOMPARE(text, u"–"_s);
}

void TestNumberText::usesAPointInEveryLocale()
{
    QLocale::setDefault(QLocale(QLocale::German));
    QCOMPARE(wattsText(1234.5, 1), u"1234.5 W"_s);
    QLocale::setDefault(QLocale::c());
}

QTEST_APPLESS_MAIN(TestNumberText)
#include "tst_NumberText.moc"
