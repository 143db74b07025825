#include "cards/NumberText.h"

#include <QLocale>
#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestNumberText : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::German)); }
    void writesNumbers_data();
    void writesNumbers();
    void writesQuantities();
};

void TestNumberText::writesNumbers_data()
{
    QTest::addColumn<double>("number");
    QTest::addColumn<int>("digits");
    QTest::addColumn<QString>("text");
    QTest::newRow("a point in every locale") << 16.69 << 2 << u"16.69"_s;
    QTest::newRow("zeros are kept") << 3.0 << 2 << u"3.00"_s;
    QTest::newRow("no groups of thousands") << 12345.6 << 0 << u"12346"_s;
    QTest::newRow("rounded down") << 52.4 << 0 << u"52"_s;
    QTest::newRow("rounded up") << 52.6 << 0 << u"53"_s;
    QTest::newRow("halfway below an odd number") << 12.5 << 0 << u"12"_s;
    QTest::newRow("halfway above an odd number") << 13.5 << 0 << u"14"_s;
    QTest::newRow("a half") << 0.5 << 0 << u"0"_s;
    QTest::newRow("halfway with a digit") << 48.25 << 1 << u"48.2"_s;
    QTest::newRow("halfway with a digit, to above") << 48.75 << 1 << u"48.8"_s;
    QTest::newRow("halfway with two digits") << 0.125 << 2 << u"0.12"_s;
    QTest::newRow("halfway with two digits, to above") << 0.375 << 2 << u"0.38"_s;
    QTest::newRow("halfway below zero") << -2.5 << 0 << u"-2"_s;
    QTest::newRow("not quite halfway in binary") << 1.005 << 2 << u"1.00"_s;
    QTest::newRow("more than halfway in binary") << 8.345 << 2 << u"8.35"_s;
    QTest::newRow("a large one") << 1e15 << 0 << u"1000000000000000"_s;
}

void TestNumberText::writesNumbers()
{
    QFETCH(double, number);
    QFETCH(int, digits);
    QTEST(fixedText(number, digits), "text");
}

void TestNumberText::writesQuantities()
{
    QCOMPARE(percentText(71.4), u"71%"_s);
    QCOMPARE(spacedPercentText(71.4), u"71 %"_s);
    QCOMPARE(wattsText(16.69, 2), u"16.69 W"_s);
    QCOMPARE(tightWattsText(49.65, 1), u"49.6W"_s);
    QCOMPARE(celsiusText(73.6), u"74°C"_s);
}

QTEST_APPLESS_MAIN(TestNumberText)
#include "tst_NumberText.moc"
