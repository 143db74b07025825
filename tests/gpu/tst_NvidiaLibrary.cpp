#include "gpu/NvidiaLibrary_linux.h"

#include "gpu/StandInNvidia.h"

#include <QTest>

using namespace corvane;

Q_DECLARE_METATYPE(std::optional<std::uint64_t>)
Q_DECLARE_METATYPE(std::optional<corvane::GPULimit>)
Q_DECLARE_METATYPE(corvane::Coverage)

using corvane::test::StandInNvidia;

namespace {

using Bytes = std::optional<std::uint64_t>;

/// The only device of a reading.
NvidiaDeviceReading readOnly(const char *path, bool withProcesses = false)
{
    NvidiaLibrary library(path);
    const auto devices = library.read(1000, withProcesses);
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
    void readsMemory_data();
    void readsMemory();
    void addsUpUnifiedMemory();
    void tellsWhatHoldsTheClocksBack_data();
    void tellsWhatHoldsTheClocksBack();
    void readsProcessesWhenAsked();
    void isAbsentWithoutALibrary();
    void tellsWhyItCannotBeOpened_data();
    void tellsWhyItCannotBeOpened();
    void whatIsNotSupportedIsAbsent_data();
    void whatIsNotSupportedIsAbsent();
    void aShareOfMoreThanAllIsAbsent();
    void isLostWithItsGPU_data();
    void isLostWithItsGPU();
    void readsTheOthersWhenOneIsLost();
    void anyErrorIsAbsence_data();
    void anyErrorIsAbsence();
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
    QCOMPARE(device.millijoules, Bytes(5'000'000));
    QCOMPARE(device.name, std::string("NVIDIA GeForce RTX 4090"));
    QCOMPARE(device.megahertz, std::optional(2610.0));
    QVERIFY(!device.limit); // It is idle, which holds it back too.
    QCOMPARE(device.memoryTotal, Bytes(24'000'000'000));
    QCOMPARE(device.memoryUsed, Bytes(9'000'000'000));
    QVERIFY(!device.usesSystemMemory);
    QVERIFY(!device.processes);
    QCOMPARE(device.load, Coverage::known);
    QCOMPARE(device.power, Coverage::known);
    QCOMPARE(device.memory, Coverage::known);
}

void TestNvidiaLibrary::readsSeveral()
{
    const StandInNvidia nvidia;
    nvidia.script("nvmlDeviceGetCount_v2 3\nnvmlDeviceGetName@1 3090\n");
    NvidiaLibrary library(STAND_IN_NVML);
    const auto devices = library.read(1000);
    QVERIFY(devices);
    QCOMPARE(devices->size(), std::size_t(3));
    QCOMPARE(devices->back().address, std::string("00000000:03:00.0"));
    QCOMPARE(devices->at(1).name, std::string("NVIDIA GeForce RTX 3090"));
    QVERIFY(library.read(1001));
    QCOMPARE(nvidia.calls("nvmlDeviceGetName"), 3); // It does not change.
}

void TestNvidiaLibrary::readsAnOldLibrary()
{
    const StandInNvidia nvidia;
    const NvidiaDeviceReading device = readOnly(STAND_IN_NVML_OLD);
    QCOMPARE(device.address, std::string("0000:01:00.0"));
    QCOMPARE(device.busyFraction, std::optional(0.4));
    QCOMPARE(device.watts, std::optional(75.5));
    QVERIFY(!device.millijoules);
    QCOMPARE(device.memoryUsed, Bytes(9'500'000'000)); // What is reserved counts as used here.
    QCOMPARE(nvidia.calls("nvmlInit"), 1);
    QCOMPARE(nvidia.calls("nvmlDeviceGetCurrentClocksThrottleReasons"), 1);
}

void TestNvidiaLibrary::readsANewLibrary()
{
    const StandInNvidia nvidia;
    QCOMPARE(readOnly(STAND_IN_NVML_NEW).temperature, std::optional(62.0));
}

void TestNvidiaLibrary::readsMemory_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<Bytes>("total");
    QTest::addColumn<Bytes>("used");
    QTest::addColumn<Coverage>("coverage");
    QTest::addColumn<bool>("isSystemMemory");
    const QByteArray second = "nvmlDeviceGetMemoryInfo_v2 ";
    const QByteArray first = "nvmlDeviceGetMemoryInfo ";
    QTest::newRow("an empty card") << second + "1000 0 1000\n"
                                   << Bytes(1000) << Bytes(0) << Coverage::known << false;
    QTest::newRow("a full card") << second + "1000 100 0\n"
                                 << Bytes(1000) << Bytes(900) << Coverage::known << false;
    QTest::newRow("more free than there is") << second + "1000 100 950\n"
                                             << Bytes(1000) << Bytes(0) << Coverage::known << false;
    QTest::newRow("more reserved than there is")
        << second + "1000 1001 0\n"
        << Bytes(1000) << Bytes(0) << Coverage::known << false;
    QTest::newRow("no memory at all") << second + "0 0 0\n"
                                      << Bytes() << Bytes() << Coverage::unpublished << false;
    QTest::newRow("all ones") << second + "none none none\n"
                              << Bytes() << Bytes() << Coverage::unpublished << false;
    QTest::newRow("an unknown version of the structure")
        << second + "fails 25\n" + first + "1000 0 400\n"
        << Bytes(1000) << Bytes(600) << Coverage::known << false;
    QTest::newRow("only the first version works")
        << second + "fails 3\n" + first + "1000 0 400\n"
        << Bytes(1000) << Bytes(600) << Coverage::known << false;
    QTest::newRow("more used than there is")
        << second + "fails 25\n" + first + "1000 0 1001\n"
        << Bytes() << Bytes() << Coverage::unpublished << false;
    QTest::newRow("no permission") << second + "fails 4\n" + first + "fails 4\n"
                                   << Bytes() << Bytes() << Coverage::locked << false;
    QTest::newRow("another error") << second + "fails 999\n" + first + "fails 999\n"
                                   << Bytes() << Bytes() << Coverage::unpublished << false;
    QTest::newRow("the machine's memory, of which two processes hold some")
        << second + "fails 3\n" + first + "fails 3\n"
        << Bytes() << Bytes(8'400'000'000) << Coverage::known << true;
}

void TestNvidiaLibrary::readsMemory()
{
    QFETCH(QByteArray, script);
    const StandInNvidia nvidia;
    nvidia.script(script);
    const NvidiaDeviceReading device = readOnly(STAND_IN_NVML);
    QTEST(device.memoryTotal, "total");
    QTEST(device.memoryUsed, "used");
    QTEST(device.memory, "coverage");
    QTEST(device.usesSystemMemory, "isSystemMemory");
}

void TestNvidiaLibrary::addsUpUnifiedMemory()
{
    const StandInNvidia nvidia;
    const QByteArray unified =
        "nvmlDeviceGetMemoryInfo_v2 fails 3\nnvmlDeviceGetMemoryInfo fails 3\n"
        "nvmlDeviceGetGraphicsRunningProcesses_v3 fails 3\n"
        "nvmlDeviceGetComputeRunningProcesses_v3 ";
    nvidia.script(unified + "100 none 101 5000\n");
    QCOMPARE(readOnly(STAND_IN_NVML).memoryUsed, Bytes(5000));
    nvidia.script(unified + "100 none\n");
    QVERIFY(!readOnly(STAND_IN_NVML).memoryUsed);
    nvidia.script(unified + "fails 4\n");
    QVERIFY(!readOnly(STAND_IN_NVML).memoryUsed);
    QCOMPARE(readOnly(STAND_IN_NVML).memory, Coverage::unpublished);
}

void TestNvidiaLibrary::tellsWhatHoldsTheClocksBack_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<std::optional<GPULimit>>("limit");
    const auto row = [](const char *name, const QByteArray &value,
                        std::optional<GPULimit> limit = std::nullopt) {
        QTest::newRow(name) << "nvmlDeviceGetCurrentClocksEventReasons " + value + '\n' << limit;
    };
    row("nothing", "0");
    row("idle, a setting, other cards and the display",
        QByteArray::number(0x1 | 0x2 | 0x10 | 0x100));
    row("its power cap", QByteArray::number(0x4), GPULimit::power);
    row("the power supply's brake", QByteArray::number(0x88), GPULimit::power);
    row("heat, by software", QByteArray::number(0x24), GPULimit::temperature);
    row("heat, by hardware", QByteArray::number(0x48), GPULimit::temperature);
    row("another slowdown of the hardware", QByteArray::number(0x8), GPULimit::hardware);
    row("not told, and far below its power limit", "fails 3");
    row("not told, and at its power limit", "fails 3\nnvmlDeviceGetPowerUsage 449000",
        GPULimit::power);
    row("not told, and no power limit known",
        "fails 3\nnvmlDeviceGetPowerUsage 449000\nnvmlDeviceGetEnforcedPowerLimit fails 3");
    row("not told, and a power limit of 0", "fails 3\nnvmlDeviceGetEnforcedPowerLimit 0");
}

void TestNvidiaLibrary::tellsWhatHoldsTheClocksBack()
{
    QFETCH(QByteArray, script);
    const StandInNvidia nvidia;
    nvidia.script(script);
    QTEST(readOnly(STAND_IN_NVML).limit, "limit");
}

void TestNvidiaLibrary::readsProcessesWhenAsked()
{
    const StandInNvidia nvidia;
    QVERIFY(!readOnly(STAND_IN_NVML).processes);
    QCOMPARE(nvidia.calls("nvmlDeviceGetComputeRunningProcesses_v3"), 0);
    const auto processes = readOnly(STAND_IN_NVML, true).processes;
    QVERIFY(processes);
    QCOMPARE(processes->size(), std::size_t(3));
}

void TestNvidiaLibrary::isAbsentWithoutALibrary()
{
    const StandInNvidia nvidia;
    for (const char *path : {"/nowhere/libnvidia-ml.so.1", __FILE__, STAND_IN_NVML_BARE}) {
        NvidiaLibrary library(path);
        QCOMPARE(library.coverage(), Coverage::noLibrary);
        QVERIFY(!library.read(1000));
    }
    QCOMPARE(nvidia.calls("nvmlInit_v2"), 0);
}

void TestNvidiaLibrary::tellsWhyItCannotBeOpened_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<Coverage>("coverage");
    QTest::newRow("no permission") << 4 << Coverage::locked;
    QTest::newRow("no driver") << 9 << Coverage::unpublished;
    QTest::newRow("a part of it is missing") << 12 << Coverage::noLibrary;
    QTest::newRow("closed by the system") << 17 << Coverage::unpublished;
    QTest::newRow("the driver was updated") << 18 << Coverage::newDriver;
    QTest::newRow("any other reason") << 999 << Coverage::unpublished;
}

void TestNvidiaLibrary::tellsWhyItCannotBeOpened()
{
    QFETCH(int, code);
    const StandInNvidia nvidia;
    nvidia.script("nvmlInit_v2 fails " + QByteArray::number(code) + '\n');
    {
        NvidiaLibrary library(STAND_IN_NVML);
        QTEST(library.coverage(), "coverage");
        QVERIFY(!library.read(1000));
    }
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
    QTest::addColumn<Coverage>("coverage");
    QTest::newRow("the GPU fell off its bus")
        << QByteArray("nvmlDeviceGetPowerUsage fails 15\n") << Coverage::unpublished;
    QTest::newRow("the GPU cannot be found any more")
        << QByteArray("nvmlDeviceGetHandleByIndex_v2 fails 15\n") << Coverage::unpublished;
    QTest::newRow("the driver was updated")
        << QByteArray("nvmlDeviceGetPowerUsage fails 18\n") << Coverage::newDriver;
    QTest::newRow("the driver was updated, as the list of GPUs tells")
        << QByteArray("nvmlDeviceGetCount_v2 fails 18\n") << Coverage::newDriver;
    QTest::newRow("no count") << QByteArray("nvmlDeviceGetCount_v2 fails 999\n")
                              << Coverage::unpublished;
}

void TestNvidiaLibrary::isLostWithItsGPU()
{
    QFETCH(QByteArray, script);
    const StandInNvidia nvidia;
    nvidia.script(script);
    NvidiaLibrary library(STAND_IN_NVML);
    QCOMPARE(library.coverage(), Coverage::known);
    QVERIFY(!library.read(1000));
    QTEST(library.coverage(), "coverage");
}

void TestNvidiaLibrary::readsTheOthersWhenOneIsLost()
{
    const StandInNvidia nvidia;
    nvidia.script("nvmlDeviceGetCount_v2 3\nnvmlDeviceGetMemoryInfo_v2@1 fails 15\n");
    NvidiaLibrary library(STAND_IN_NVML);
    const auto devices = library.read(1000);
    QVERIFY(devices);
    QCOMPARE(devices->size(), std::size_t(2));
    QCOMPARE(devices->back().address, std::string("00000000:03:00.0"));
    QVERIFY(library.hasLostGPU());
    nvidia.script("nvmlDeviceGetCount_v2 3\n");
    QCOMPARE(library.read(1001)->size(), std::size_t(3));
    QVERIFY(!library.hasLostGPU());
}

void TestNvidiaLibrary::anyErrorIsAbsence_data()
{
    QTest::addColumn<int>("code");
    for (const int code : {1, 2, 3, 4, 6, 7, 9, 12, 13, 17, 25, 28, 999, -1})
        QTest::addRow("code %d", code) << code;
}

/// Every function of a device fails alike.
void TestNvidiaLibrary::anyErrorIsAbsence()
{
    QFETCH(int, code);
    const StandInNvidia nvidia;
    QByteArray script;
    for (const char *function :
         {"Name", "PciInfo_v3", "UtilizationRates", "PerformanceState", "ClockInfo", "Temperature",
          "PowerUsage", "EnforcedPowerLimit", "TotalEnergyConsumption", "CurrentClocksEventReasons",
          "MemoryInfo", "MemoryInfo_v2", "ComputeRunningProcesses_v3",
          "GraphicsRunningProcesses_v3", "ProcessUtilization", "ProcessesUtilizationInfo"})
        script +=
            QByteArray("nvmlDeviceGet") + function + " fails " + QByteArray::number(code) + '\n';
    nvidia.script(script);
    const NvidiaDeviceReading device = readOnly(STAND_IN_NVML, true);
    QCOMPARE(device.address, std::string("nvidia 0"));
    QVERIFY(device.name.empty());
    QVERIFY(!device.busyFraction && !device.performanceState && !device.megahertz);
    QVERIFY(!device.temperature && !device.watts && !device.millijoules && !device.limit);
    QVERIFY(!device.memoryTotal && !device.memoryUsed && !device.processes);
    QVERIFY(isDenied(device.load) && isDenied(device.power) && isDenied(device.memory));
}

void TestNvidiaLibrary::closesOnce()
{
    const StandInNvidia nvidia;
    {
        NvidiaLibrary library(STAND_IN_NVML);
        QVERIFY(library.read(1000));
        QVERIFY(library.read(1001));
        QCOMPARE(nvidia.calls("nvmlShutdown"), 0);
    }
    QCOMPARE(nvidia.calls("nvmlInit_v2"), 1);
    QCOMPARE(nvidia.calls("nvmlShutdown"), 1);
}

QTEST_GUILESS_MAIN(TestNvidiaLibrary)
#include "tst_NvidiaLibrary.moc"
