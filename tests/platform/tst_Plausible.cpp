#include "platform/Plausible.h"

#include <QTest>

#include <limits>

using namespace corvane;

class TestPlausible : public QObject {
    Q_OBJECT

private slots:
    void knowsTemperatures_data();
    void knowsTemperatures();
};

void TestPlausible::knowsTemperatures_data()
{
    QTest::addColumn<double>("celsius");
    QTest::addColumn<bool>("onLinux");
    QTest::addColumn<bool>("onAMac");
    QTest::newRow("a warm chip") << 61.5 << true << true;
    QTest::newRow("0 is a sensor that is off") << 0.0 << false << false;
    QTest::newRow("below 0") << -128.0 << false << false;
    QTest::newRow("just below Linux's limit") << 149.999 << true << true;
    QTest::newRow("at Linux's limit") << 150.0 << false << true;
    QTest::newRow("at the Mac's limit") << 200.0 << false << false;
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << false << false;
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << false << false;
}

void TestPlausible::knowsTemperatures()
{
    QFETCH(double, celsius);
    QTEST(isTemperature(celsius, celsiusLimitLinux), "onLinux");
    QTEST(isTemperature(celsius, celsiusLimitMac), "onAMac");
}

QTEST_APPLESS_MAIN(TestPlausible)
#include "tst_Plausible.moc"
