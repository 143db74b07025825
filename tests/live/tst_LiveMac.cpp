#include "chip/ChipIdentity.h"
#include "chip/ChipSource.h"
#include "live/LiveMac.h"
#include "memory/MemorySampler.h"
#include "processes/ProcessBridge.h"
#include "processes/ProcessSampler.h"

#include <QTest>

#include <algorithm>
#include <cmath>

#include <unistd.h>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

std::vector<std::string> ownArguments;

bool isTemperature(const std::optional<double> &celsius)
{
    return celsius > 5 && celsius < 125;
}

bool isShare(double fraction)
{
    return fraction >= 0 && fraction <= 1;
}

/// The reading as text, for the message of a failed check.
QString described(const ChipReading &chip)
{
    const auto celsius = [](std::optional<double> value) {
        return value ? QString::number(*value, 'f', 1) : u"none"_s;
    };
    const auto watts = [](double value, bool isDenied) {
        return isDenied ? u"denied"_s : QString::number(value, 'f', 2) + u" W"_s;
    };
    return u"CPU %1, %2 %, %3 MHz, %4 °C; GPU %5, %6 %, %7 °C; ANE %8, %9 °C; package %10 °C"_s
        .arg(watts(chip.cpuWatts, chip.denied.cpuWatts))
        .arg(chip.cpuActiveFraction * 100, 0, 'f', 1)
        .arg(chip.cpuActiveMHz, 0, 'f', 0)
        .arg(celsius(chip.cpuTempC))
        .arg(watts(chip.gpuWatts, chip.denied.gpuWatts))
        .arg(chip.gpuActiveFraction * 100, 0, 'f', 1)
        .arg(celsius(chip.gpuTempC))
        .arg(watts(chip.aneWatts, chip.denied.aneWatts))
        .arg(celsius(chip.aneTempC), celsius(chip.packageTempC));
}

} // namespace

/// Whether the readings of the Mac that runs this are plausible: the first check on a chip that has
/// not been tested.
class TestLiveMac : public QObject {
    Q_OBJECT

private slots:
    void init() { m_mac = LiveMac(ownArguments); }
    void knowsTheChip();
    void memoryAddsUp();
    void theChipIsAtWork();
    void theTemperaturesAreThoseOfARunningChip();
    void findsItself();
    void ranksWhatItFinds();

private:
    /// The reading after a few busy seconds: the energy of some chips is published every two.
    std::optional<ChipReading> busyReading() const;

    LiveMac m_mac{ownArguments};
};

std::optional<ChipReading> TestLiveMac::busyReading() const
{
    const ChipSource chip = openChipSource(LiveMac::seconds);
    if (!chip)
        return std::nullopt;
    std::optional<ChipReading> reading = chip();
    for (int second = 0; second < 8; ++second) {
        m_mac.workForASecond();
        reading = chip();
    }
    return reading;
}

void TestLiveMac::knowsTheChip()
{
    const auto name = readChipName();
    QVERIFY(name);
    const QString shown = SystemInfo::shownChipName(name);
    QVERIFY2(shown.startsWith("Apple "_L1), qPrintable(shown));
    const ChipInfo chip = ChipInfo::detect(shown);
    QVERIFY(chip.cpuMaxW > 0 && chip.gpuMaxW > 0 && chip.aneMaxW > 0);
}

void TestLiveMac::memoryAddsUp()
{
    const MemorySnapshot memory = MemorySampler::sample();
    QCOMPARE(memory.total, m_mac.memoryBytes());
    QVERIFY(memory.total >= std::uint64_t(4) << 30);
    QVERIFY(memory.used > memory.total / 20 && memory.used <= memory.total);
    QVERIFY(memory.free < memory.total);
    QVERIFY(memory.wired > 0 && memory.wired < memory.used);
    QVERIFY(memory.active > 0 && memory.active < memory.total);
    QVERIFY(memory.cached < memory.total);
    QCOMPARE(memory.appMemory, memory.active + memory.wired + memory.compressed);
    QVERIFY(memory.swapUsed <= memory.swapTotal);
}

void TestLiveMac::theChipIsAtWork()
{
    const auto chip = busyReading();
    if (!chip && m_mac.isVirtualMachine())
        QSKIP("a virtual machine shows no reporting channels");
    QVERIFY(chip);
    const QByteArray reading = described(*chip).toUtf8();
    qInfo("%s", reading.constData());

    QCOMPARE(chip->cpuCoreUtilizations.size(), m_mac.logicalCores());
    QVERIFY(std::ranges::all_of(chip->cpuCoreUtilizations, isShare));
    QVERIFY(std::ranges::max(chip->cpuCoreUtilizations) > 0.1);
    if (m_mac.isVirtualMachine())
        QSKIP("a virtual machine's watts and residencies are not the chip's");

    if (chip->denied.anyWatts())
        qWarning("This chip does not publish the energy of all its parts now.");
    QVERIFY2(chip->denied.cpuWatts || chip->cpuWatts > 0.05, reading.constData());
    QVERIFY2(chip->cpuWatts < 400, reading.constData());
    QVERIFY2(!chip->denied.cpuLoad && !chip->denied.gpuLoad, reading.constData());
    for (const GPUStateShare &share : chip->gpuStateResidency)
        QVERIFY2(share.state != u"NO_CLTM"_s, reading.constData());
    QVERIFY2(chip->gpuWatts >= 0 && chip->gpuWatts < 400, reading.constData());
    QVERIFY2(chip->aneWatts >= 0 && chip->aneWatts < 60, reading.constData());
    QVERIFY2(chip->cpuActiveFraction > 0 && chip->cpuActiveFraction <= 1, reading.constData());
    QVERIFY2(isShare(chip->gpuActiveFraction), reading.constData());
    QVERIFY2(chip->cpuActiveMHz > 500 && chip->cpuActiveMHz < 8000, reading.constData());
    double shares = 0;
    for (const GPUStateShare &share : chip->gpuStateResidency)
        shares += share.fraction;
    QVERIFY2(chip->gpuStateResidency.empty() || std::abs(shares - 1) < 1e-6, reading.constData());
}

void TestLiveMac::theTemperaturesAreThoseOfARunningChip()
{
    if (m_mac.isVirtualMachine())
        QSKIP("a virtual machine has no temperature sensors");
    const auto chip = busyReading();
    QVERIFY(chip);
    const QByteArray reading = described(*chip).toUtf8();
    QVERIFY2(isTemperature(chip->cpuTempC) || isTemperature(chip->packageTempC),
             reading.constData());
    for (const auto &celsius : {chip->cpuTempC, chip->gpuTempC, chip->aneTempC, chip->packageTempC})
        QVERIFY2(!celsius || isTemperature(celsius), reading.constData());
}

void TestLiveMac::findsItself()
{
    const std::vector<ProcessRecord> processes = ProcessBridge::allProcesses();
    const auto self =
        std::ranges::find(processes, std::optional(std::int32_t(getpid())), &ProcessRecord::pid);
    QVERIFY(self != processes.end());
    QCOMPARE(self->name, std::string("tst_LiveMac"));
    QVERIFY(self->memory > std::uint64_t(1) << 20 && self->memory < std::uint64_t(2) << 30);

    const auto arguments = ProcessBridge::processArgsForPID(getpid());
    QVERIFY(arguments);
    QVERIFY(arguments->argv == ownArguments);
    QVERIFY(arguments->path.ends_with("tst_LiveMac"));
}

void TestLiveMac::ranksWhatItFinds()
{
    const auto rows = ProcessSampler::topByRAM(20);
    QVERIFY(!rows.empty() && rows.size() <= 20);
    QVERIFY(std::ranges::is_sorted(rows, std::greater(), &ProcessRow::memory));
}

int main(int argc, char **argv)
{
    ownArguments.assign(argv, argv + argc);
    TestLiveMac test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_LiveMac.moc"
