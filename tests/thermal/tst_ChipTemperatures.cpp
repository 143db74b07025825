#include "thermal/ChipTemperatures.h"

#include <QTest>

using namespace corvane;

using Sensors = std::vector<PartTemperature>;

Q_DECLARE_METATYPE(Sensors)
Q_DECLARE_METATYPE(ChipTemperatures)

class TestChipTemperatures : public QObject {
    Q_OBJECT

private slots:
    void averages_data();
    void averages();
};

void TestChipTemperatures::averages_data()
{
    QTest::addColumn<Sensors>("sensors");
    QTest::addColumn<ChipTemperatures>("expected");
    QTest::newRow("no sensors") << Sensors{} << ChipTemperatures{};
    QTest::newRow("one sensor") << Sensors{{ChipPart::gpu, 41.5}} << ChipTemperatures{.gpu = 41.5};
    QTest::newRow("the mean of a part")
        << Sensors{{ChipPart::cpu, 50}, {ChipPart::cpu, 60}, {ChipPart::cpu, 40}}
        << ChipTemperatures{.cpu = 50};
    QTest::newRow("each part by itself")
        << Sensors{{ChipPart::ane, 30},
                   {ChipPart::gpu, 27},
                   {ChipPart::package, 35},
                   {ChipPart::gpu, 28},
                   {ChipPart::cpu, 59}}
        << ChipTemperatures{.cpu = 59, .gpu = 27.5, .ane = 30, .package = 35};
}

void TestChipTemperatures::averages()
{
    QFETCH(Sensors, sensors);
    QFETCH(ChipTemperatures, expected);
    TemperatureMeans means;
    for (const PartTemperature &sensor : sensors)
        means.add(sensor);
    ChipReading reading;
    setTemperatures(reading, means.means());
    QCOMPARE(reading.cpuTempC, expected.cpu);
    QCOMPARE(reading.gpuTempC, expected.gpu);
    QCOMPARE(reading.aneTempC, expected.ane);
    QCOMPARE(reading.packageTempC, expected.package);
}

QTEST_GUILESS_MAIN(TestChipTemperatures)
#include "tst_ChipTemperatures.moc"
