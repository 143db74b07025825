#include "thermal/ThermalSampler.h"

#include <QTest>

using namespace corvane;
using Category = ThermalSampler::Category;

using Temperatures = std::map<std::string, double>;

Q_DECLARE_METATYPE(std::optional<Category>)

class TestThermalSampler : public QObject {
    Q_OBJECT

private slots:
    void categorizes_data();
    void categorizes();
    void averagesByPart();
    void readsAnewEachTime();
};

void TestThermalSampler::categorizes_data()
{
    QTest::addColumn<QByteArray>("sensor");
    QTest::addColumn<std::optional<Category>>("expected");

    const auto row = [](const char *name, const char *sensor, std::optional<Category> expected) {
        QTest::newRow(name) << QByteArray(sensor) << expected;
    };
    constexpr auto none = std::nullopt;
    row("a die sensor of the power manager", "PMU tdie1", Category::package);
    row("a performance core by the power manager", "PMU TP3s", Category::cpu);
    row("another core sensor of the power manager", "PMU TC1a", Category::cpu);
    row("a graphics sensor of the power manager", "PMU TG0b", Category::gpu);
    row("a rail of the power manager", "PMU TR0Z", Category::package);
    row("a system sensor of the power manager", "PMU TS2x", Category::package);
    row("performance cores", "pACC MTR Temp Sensor2", Category::cpu);
    row("efficiency cores", "eACC MTR Temp Sensor0", Category::cpu);
    row("graphics", "GPU MTR Temp Sensor1", Category::gpu);
    row("the Neural Engine", "ANE MTR Temp Sensor1", Category::ane);
    row("the rest of the chip", "SOC MTR Temp Sensor0", Category::package);
    row("the chip's name within the sensor's", "PMGR SOC Die Temp Sensor2", Category::package);

    row("flash memory", "NAND CH0 temp", none);
    row("the battery's gauge", "gas gauge battery", none);
    row("the gauge alone", "Gas Gauge", none);
    row("the battery alone", "BATTERY 1", none);
    row("a calibration value", "PMU tcal", none);
    row("a device sensor of the power manager", "PMU tdev4", none);
    row("the image processor", "ISP MTR Temp Sensor5", none);
    row("the second power manager", "PMU2 TR0Z", none);
    row("no name", "", none);

    row("the Neural Engine comes before graphics", "GPU ANE Temp", Category::ane);
    row("graphics comes before the cores", "PACC GPU Temp", Category::gpu);
    row("the cores come before the chip", "SOC EACC Temp", Category::cpu);
    row("what is ignored comes before all", "GPU battery", none);
    row("the battery's gauge comes before the chip", "SOC gas gauge", none);
    row("a device sensor comes before the chip", "PMU tdev1 SOC", none);
    row("flash memory comes before the Neural Engine", "ANE nand", none);
    row("a calibration value comes before the cores", "PMU TCAL", none);

    row("case does not matter", "gpu mtr temp", Category::gpu);
    row("case does not matter in a prefix", "pmu TDIE7", Category::package);
    row("case does not matter for what is ignored", "Pmu TDEV1", none);
    row("a prefix counts at the start alone", "x PMU TP3s", none);
    row("a device prefix counts at the start alone", "GPU PMU tdev1", Category::gpu);
    row("a prefix must be whole", "PMU T", none);
    row("a name that is a prefix", "PMU TG", Category::gpu);
    row("letters in another word", "Panel", Category::ane);
    row("bytes that are not text", "\xFF\xFEGPU\xC3", Category::gpu);
}

void TestThermalSampler::categorizes()
{
    QFETCH(QByteArray, sensor);
    QTEST(ThermalSampler::categorize(sensor.toStdString()), "expected");
}

void TestThermalSampler::averagesByPart()
{
    const Temperatures temperatures = {{"ANE MTR Temp Sensor1", 30},
                                       {"GPU MTR Temp Sensor1", 27},
                                       {"GPU MTR Temp Sensor4", 28},
                                       {"PMU TP0s", 59.5},
                                       {"PMU tdie1", 34},
                                       {"PMU tdie2", 37},
                                       {"gas gauge battery", 31},
                                       {"PMU tcal", 51.9}};
    const auto reading = ThermalSampler([temperatures] { return temperatures; }).sample();
    QCOMPARE(reading.cpu, std::optional(59.5));
    QCOMPARE(reading.gpu, std::optional(27.5));
    QCOMPARE(reading.ane, std::optional(30.0));
    QCOMPARE(reading.package, std::optional(35.5)); // Ignored sensors are in none.
}

void TestThermalSampler::readsAnewEachTime()
{
    Temperatures temperatures{{"GPU 1", 40}};
    ThermalSampler sampler([&temperatures] { return temperatures; });
    QCOMPARE(sampler.sample().gpu, std::optional(40.0));
    temperatures["GPU 1"] = 44;
    QCOMPARE(sampler.sample().gpu, std::optional(44.0));
    temperatures.clear();
    QCOMPARE(sampler.sample().gpu, std::nullopt);
}

QTEST_APPLESS_MAIN(TestThermalSampler)
#include "tst_ThermalSampler.moc"
