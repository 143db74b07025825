#include "chip/SystemPower.h"

#include <QTest>

using namespace corvane;

/// Batteries as a source of the machine's power.
class TestSystemPower : public QObject {
    Q_OBJECT

private slots:
    void readsBatteries_data();
    void readsBatteries();
};

void TestSystemPower::readsBatteries_data()
{
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<QByteArray>("power");
    QTest::addColumn<QByteArray>("current");
    QTest::addColumn<QByteArray>("voltage");
    QTest::addColumn<double>("watts"); ///< Negative: absent.
    const auto row = [](const char *name, const char *status, const char *power,
                        const char *current, const char *voltage, double watts) {
        QTest::newRow(name) << QByteArray(status) << QByteArray(power) << QByteArray(current)
                            << QByteArray(voltage) << watts;
    };
    row("by its power", "Discharging\n", "52300000\n", "", "", 52.3);
    row("by current and voltage", "Discharging\n", "", "2000000\n", "12500000\n", 25);
    row("its power comes first", "Discharging\n", "7000000\n", "2000000\n", "12500000\n", 7);
    row("counted as negative", "Discharging\n", "-7000000\n", "", "", 7);
    row("charging", "Charging\n", "31000000\n", "", "", -1);
    row("full", "Full\n", "0\n", "", "", -1);
    row("without a status", "", "7000000\n", "", "", -1);
    row("current alone", "Discharging\n", "", "2000000\n", "", -1);
    row("garbage", "Discharging\n", "power\n", "x\n", "y\n", -1);
    row("more than a machine draws", "Discharging\n", "9223372036854775807\n", "", "", -1);
}

void TestSystemPower::readsBatteries()
{
    QFETCH(QByteArray, status);
    QFETCH(QByteArray, power);
    QFETCH(QByteArray, current);
    QFETCH(QByteArray, voltage);
    const auto watts = batteryWatts({.status = status.constData(),
                                     .power = power.constData(),
                                     .current = current.constData(),
                                     .voltage = voltage.constData()});
    QTEST(watts.value_or(-1), "watts");
}

QTEST_GUILESS_MAIN(TestSystemPower)
#include "tst_SystemPower.moc"
