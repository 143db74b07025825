#include "thermal/TemperatureSensors.h"

#include <QTest>

using namespace corvane;

using Part = std::optional<ChipPart>;
using Parts = std::vector<Part>;
using Kind = std::optional<ThermalZoneKind>;
using Degrees = std::optional<double>;

Q_DECLARE_METATYPE(SensorDevice)
Q_DECLARE_METATYPE(Parts)
Q_DECLARE_METATYPE(Kind)
Q_DECLARE_METATYPE(Degrees)
Q_DECLARE_METATYPE(ThermalZoneKind)

class TestTemperatureSensors : public QObject {
    Q_OBJECT

private slots:
    void findsParts_data();
    void findsParts();
    void recognizesDrivers_data();
    void recognizesDrivers();
    void recognizesZones_data();
    void recognizesZones();
    void readsZones_data();
    void readsZones();
};

void TestTemperatureSensors::findsParts_data()
{
    QTest::addColumn<SensorDevice>("device");
    QTest::addColumn<Parts>("parts");
    const Part cpu = ChipPart::cpu;
    const Part gpu = ChipPart::gpu;
    const Part package = ChipPart::package;
    const Part none;
    QTest::newRow("no sensors") << SensorDevice{.driver = "coretemp"} << Parts{};
    QTest::newRow("cores and their package")
        << SensorDevice{"coretemp", {"Package id 0", "Core 0", "Core 8"}}
        << Parts{package, cpu, cpu};
    QTest::newRow("Tctl without Tdie")
        << SensorDevice{"k10temp", {"Tctl", "Tccd1"}} << Parts{cpu, cpu};
    QTest::newRow("Tctl beside Tdie has an offset")
        << SensorDevice{"k10temp", {"Tctl", "Tdie", "Tccd1"}} << Parts{none, cpu, cpu};
    QTest::newRow("the other driver of the same chips")
        << SensorDevice{"zenpower", {"Tdie", "Tctl"}} << Parts{cpu, none};
    for (const char *driver :
         {"cpu_thermal", "cpu0_thermal", "bigcore1_thermal", "soc_thermal", "littlecore_thermal"})
        QTest::newRow(driver) << SensorDevice{driver, {""}} << Parts{cpu};
    QTest::newRow("gpu_thermal") << SensorDevice{"gpu_thermal", {""}} << Parts{gpu};
    QTest::newRow("a board with labels")
        << SensorDevice{"scpi_sensors", {"PMIC", "big_cluster", "GPU0"}} << Parts{none, cpu, gpu};
    QTest::newRow("an unknown label") << SensorDevice{"coretemp", {"Anything else"}} << Parts{none};
    for (const char *driver : {"npu_thermal", "center_thermal", "cpuidle", "acpitz", "amdgpu"})
        QTest::newRow(driver) << SensorDevice{driver, {""}} << Parts{none};
    QTest::newRow("a disk") << SensorDevice{"nvme", {"Composite", "Sensor 1"}} << Parts{none, none};
    QTest::newRow("a board's own sensors") << SensorDevice{"nct6797", {"CPUTIN"}} << Parts{none};
    QTest::newRow("no driver's name") << SensorDevice{"", {""}} << Parts{none};
}

void TestTemperatureSensors::findsParts()
{
    QFETCH(SensorDevice, device);
    QTEST(sensorParts(device), "parts");
}

void TestTemperatureSensors::recognizesDrivers_data()
{
    QTest::addColumn<QByteArray>("driver");
    QTest::addColumn<bool>("expected");
    for (const char *driver : {"coretemp", "k10temp", "zenpower", "cpu_thermal", "cpu0_thermal",
                               "soc_thermal", "gpu_thermal", "scpi_sensors"})
        QTest::newRow(driver) << QByteArray(driver) << true;
    for (const char *driver :
         {"", "nvme", "dell_smm", "thinkpad", "spd5118", "acpitz", "amdgpu", "npu_thermal"})
        QTest::newRow(*driver ? driver : "no name") << QByteArray(driver) << false;
}

void TestTemperatureSensors::recognizesDrivers()
{
    QFETCH(QByteArray, driver);
    QTEST(isChipDriver(driver.toStdString()), "expected");
}

void TestTemperatureSensors::recognizesZones_data()
{
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<Kind>("kind");
    QTest::newRow("the package") << QByteArray("x86_pkg_temp\n") << Kind(ThermalZoneKind::package);
    QTest::newRow("the CPU") << QByteArray("cpu-thermal\n") << Kind(ThermalZoneKind::cpu);
    QTest::newRow("one of several") << QByteArray("cpu0-thermal\n") << Kind(ThermalZoneKind::cpu);
    QTest::newRow("the board") << QByteArray("acpitz\n") << Kind(ThermalZoneKind::board);
    QTest::newRow("a policy") << QByteArray("INT3400 Thermal\n") << Kind();
    QTest::newRow("a radio") << QByteArray("iwlwifi_1\n") << Kind();
    QTest::newRow("nothing") << QByteArray() << Kind();
}

void TestTemperatureSensors::recognizesZones()
{
    QFETCH(QByteArray, type);
    QTEST(thermalZoneKind(type.toStdString()), "kind");
}

void TestTemperatureSensors::readsZones_data()
{
    QTest::addColumn<ThermalZoneKind>("kind");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<Degrees>("degrees");
    const auto package = ThermalZoneKind::package;
    const auto board = ThermalZoneKind::board;
    QTest::newRow("a package") << package << QByteArray("58000\n") << Degrees(58);
    QTest::newRow("a board") << board << QByteArray("41000\n") << Degrees(41);
    QTest::newRow("a board without a sensor") << board << QByteArray("27800\n") << Degrees();
    QTest::newRow("a board at a constant 16.8 degrees")
        << board << QByteArray("16800\n") << Degrees();
    QTest::newRow("a board at a constant 29.8 degrees")
        << board << QByteArray("29800\n") << Degrees();
    QTest::newRow("a package at a board's constant")
        << package << QByteArray("27800\n") << Degrees(27.8);
    QTest::newRow("off") << package << QByteArray("0\n") << Degrees();
}

void TestTemperatureSensors::readsZones()
{
    QFETCH(ThermalZoneKind, kind);
    QFETCH(QByteArray, text);
    QTEST(thermalZoneDegrees(kind, text.toStdString()), "degrees");
}

QTEST_GUILESS_MAIN(TestTemperatureSensors)
#include "tst_TemperatureSensors.moc"
