#include "chip/TemperatureSensors.h"

#include <QTest>

using namespace corvane;

using Devices = std::vector<SensorDevice>;
using Names = std::vector<std::vector<std::string>>;
using Kind = std::optional<ThermalZoneKind>;
using Degrees = std::optional<double>;

Q_DECLARE_METATYPE(Devices)
Q_DECLARE_METATYPE(Names)
Q_DECLARE_METATYPE(Kind)
Q_DECLARE_METATYPE(Degrees)
Q_DECLARE_METATYPE(ThermalZoneKind)

class TestTemperatureSensors : public QObject {
    Q_OBJECT

private slots:
    void namesSensors_data();
    void namesSensors();
    void tellsDriversApart_data();
    void tellsDriversApart();
    void tellsZones_data();
    void tellsZones();
    void readsZones_data();
    void readsZones();
};

void TestTemperatureSensors::namesSensors_data()
{
    QTest::addColumn<Devices>("devices");
    QTest::addColumn<Names>("names");
    QTest::newRow("no device") << Devices{} << Names{};
    QTest::newRow("cores and their package")
        << Devices{{"coretemp", {"Package id 0", "Core 0", "Core 8"}}}
        << Names{{"SOC 1", "PACC 1", "PACC 2"}};
    QTest::newRow("numbers run on from one socket to the next")
        << Devices{{"coretemp", {"Package id 0", "Core 0"}},
                   {"coretemp", {"Package id 1", "Core 0"}}}
        << Names{{"SOC 1", "PACC 1"}, {"SOC 2", "PACC 2"}};
    QTest::newRow("Tctl without Tdie")
        << Devices{{"k10temp", {"Tctl", "Tccd1"}}} << Names{{"PACC 1", "PACC 2"}};
    QTest::newRow("Tctl beside Tdie has an offset")
        << Devices{{"k10temp", {"Tctl", "Tdie", "Tccd1"}}} << Names{{"", "PACC 1", "PACC 2"}};
    QTest::newRow("the other driver of the same chips")
        << Devices{{"zenpower", {"Tdie", "Tctl"}}} << Names{{"PACC 1", ""}};
    QTest::newRow("zones of a board")
        << Devices{{"cpu_thermal", {""}}, {"cpu0_thermal", {""}},   {"bigcore1_thermal", {""}},
                   {"soc_thermal", {""}}, {"gpu_thermal", {""}},    {"littlecore_thermal", {""}},
                   {"npu_thermal", {""}}, {"center_thermal", {""}}, {"cpuidle", {""}}}
        << Names{{"PACC 1"}, {"PACC 2"}, {"PACC 3"}, {"PACC 4"}, {"GPU 1"},
                 {"PACC 5"}, {""},       {""},       {""}};
    QTest::newRow("a board with labels")
        << Devices{{"scpi_sensors", {"PMIC", "big_cluster", "GPU0"}}}
        << Names{{"", "PACC 1", "GPU 1"}};
    QTest::newRow("the driver's label never enters the name")
        << Devices{{"scpi_sensors", {"ANE battery"}}} << Names{{"PACC 1"}};
    QTest::newRow("what belongs to no part")
        << Devices{{"nvme", {"Composite", "Sensor 1"}},
                   {"acpitz", {""}},
                   {"macsmc_hwmon", {"NAND Flash Temperature"}},
                   {"nct6797", {"CPUTIN"}},
                   {"coretemp", {"Anything else"}},
                   {"amdgpu", {"edge"}},
                   {"", {""}}}
        << Names{{"", ""}, {""}, {""}, {""}, {""}, {""}, {""}};
}

void TestTemperatureSensors::namesSensors()
{
    QFETCH(Devices, devices);
    QTEST(sensorNames(devices), "names");
}

void TestTemperatureSensors::tellsDriversApart_data()
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

void TestTemperatureSensors::tellsDriversApart()
{
    QFETCH(QByteArray, driver);
    QTEST(tellsOfChip(driver.toStdString()), "expected");
}

void TestTemperatureSensors::tellsZones_data()
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

void TestTemperatureSensors::tellsZones()
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
    QTest::newRow("another one") << board << QByteArray("16800\n") << Degrees();
    QTest::newRow("and another one") << board << QByteArray("29800\n") << Degrees();
    QTest::newRow("a package may have just that")
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
