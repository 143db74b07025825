#include "gpu/NvidiaLibrary_linux.h"

#include "gpu/StandInNvidia.h"

#include <QTest>

using namespace corvane;
using corvane::test::StandInNvidia;

namespace {

/// The only device of a reading.
NvidiaDeviceReading readOnly(const char *path)
{
    const auto library = NvidiaLibrary::open(path);
    const auto devices = library ? library->read() : std::nullopt;
    return devices && devices->size() == 1 ? devices->front() : NvidiaDeviceReading{};
}

} // namespace

class TestNvidiaLibrary : public QObject {
    Q_OBJECT

private slots:
    void readsADevice();
    void readsSeveral();
    void readsAnOldLibrary();
    void readsANewLibrary();
    void isAbsentWithoutALibrary();
    void isAbsentWithoutADriver();
    void whatIsNotSupportedIsAbsent_data();
    void whatIsNotSupportedIsAbsent();
    void aShareOfMoreThanAllIsAbsent();
    void isLostWithItsGPU_data();
    void isLostWithItsGPU();
    void closesOnce();
};

void TestNvidiaLibrary::readsADevice()
{
    const StandInNvidia nvidia;
    const NvidiaDeviceReading device = readOnly(STAND_IN_NVML);
    QCOMPARE(device.address, std::string("00000000:01:00.0"));
    QCOMPARE(device.busyFraction, std::optional(0.4));
    QCOMPARE(device.performanceState, std::optional(2));
    QCOMPARE(device.temperature, std::optional(61.0));
    QCOMPARE(device.watts, std::optional(75.5));
    QCOMPARE(device.millijoules, std::optional<std::uint64_t>(5'000'000));
}

void TestNvidiaLibrary::readsSeveral()
{
    const StandInNvidia nvidia;
    nvidia.script("nvmlDeviceGetCount_v2 3\n");
    const auto devices = NvidiaLibrary::open(STAND_IN_NVML)->read();
    QVERIFY(devices);
    QCOMPARE(devices->size(), std::size_t(3));
    QCOMPARE(devices->back().address, std::string("00000000:03:00.0"));
}

void TestNvidiaLibrary::readsAnOldLibrary()
{
    const StandInNvidia nvidia;
    const NvidiaDeviceReading device = readOnly(STAND_IN_NVML_OLD);
    QCOMPARE(device.address, std::string("0000:01:00.0"));
    QCOMPARE(device.busyFraction, std::optional(0.4));
    QCOMPARE(device.watts, std::optional(75.5));
    QVERIFY(!device.millijoules);
    QCOMPARE(nvidia.calls("nvmlInit"), 1);
}

void TestNvidiaLibrary::readsANewLibrary()
{
    const StandInNvidia nvidia;
    QCOMPARE(readOnly(STAND_IN_NVML_NEW).temperature, std::optional(62.0));
}

void TestNvidiaLibrary::isAbsentWithoutALibrary()
{
    const StandInNvidia nvidia;
    QVERIFY(!NvidiaLibrary::open("/nowhere/libnvidia-ml.so.1"));
    QVERIFY(!NvidiaLibrary::open(__FILE__)); // No library at all.
    QVERIFY(!NvidiaLibrary::open(STAND_IN_NVML_BARE));
    QCOMPARE(nvidia.calls("nvmlInit_v2"), 0);
}

void TestNvidiaLibrary::isAbsentWithoutADriver()
{
    const StandInNvidia nvidia;
    nvidia.script("nvmlInit_v2 fails 9\n");
    QVERIFY(!NvidiaLibrary::open(STAND_IN_NVML));
    QCOMPARE(nvidia.calls("nvmlShutdown"), 0);
}

void TestNvidiaLibrary::whatIsNotSupportedIsAbsent_data()
{
    QTest::addColumn<QByteArray>("function");
    for (const char *function : {"nvmlDeviceGetUtilizationRates", "nvmlDeviceGetPerformanceState",
                                 "nvmlDeviceGetTemperature", "nvmlDeviceGetPowerUsage",
                                 "nvmlDeviceGetTotalEnergyConsumption", "nvmlDeviceGetPciInfo_v3"})
        QTest::newRow(function) << QByteArray(function);
}

void TestNvidiaLibrary::whatIsNotSupportedIsAbsent()
{
    QFETCH(QByteArray, function);
    const StandInNvidia nvidia;
    nvidia.script(function + " fails 3\n");
    const NvidiaDeviceReading device = readOnly(STAND_IN_NVML);
    QCOMPARE(device.busyFraction.has_value(), function != "nvmlDeviceGetUtilizationRates");
    QCOMPARE(device.performanceState.has_value(), function != "nvmlDeviceGetPerformanceState");
    QCOMPARE(device.temperature.has_value(), function != "nvmlDeviceGetTemperature");
    QCOMPARE(device.watts.has_value(), function != "nvmlDeviceGetPowerUsage");
    QCOMPARE(device.millijoules.has_value(), function != "nvmlDeviceGetTotalEnergyConsumption");
    const bool hasAddress = function != "nvmlDeviceGetPciInfo_v3";
    QCOMPARE(device.address, std::string(hasAddress ? "00000000:01:00.0" : "nvidia 0"));
}

void TestNvidiaLibrary::aShareOfMoreThanAllIsAbsent()
{
    const StandInNvidia nvidia;
    nvidia.script("nvmlDeviceGetUtilizationRates 101\n");
    QVERIFY(!readOnly(STAND_IN_NVML).busyFraction);
}

void TestNvidiaLibrary::isLostWithItsGPU_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::newRow("the GPU fell off its bus") << QByteArray("nvmlDeviceGetPowerUsage fails 15\n");
    QTest::newRow("the driver was updated") << QByteArray("nvmlDeviceGetPowerUsage fails 18\n");
    QTest::newRow("no count") << QByteArray("nvmlDeviceGetCount_v2 fails 999\n");
}

void TestNvidiaLibrary::isLostWithItsGPU()
{
    QFETCH(QByteArray, script);
    const StandInNvidia nvidia;
    nvidia.script(script);
    const auto library = NvidiaLibrary::open(STAND_IN_NVML);
    QVERIFY(library);
    QVERIFY(!library->read());
}

void TestNvidiaLibrary::closesOnce()
{
    const StandInNvidia nvidia;
    {
        const auto library = NvidiaLibrary::open(STAND_IN_NVML);
        QVERIFY(library->read());
        QVERIFY(library->read());
        QCOMPARE(nvidia.calls("nvmlShutdown"), 0);
    }
    QCOMPARE(nvidia.calls("nvmlInit_v2"), 1);
    QCOMPARE(nvidia.calls("nvmlShutdown"), 1);
}

QTEST_GUILESS_MAIN(TestNvidiaLibrary)
#include "tst_NvidiaLibrary.moc"
