#include "devices/GPUNames.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

std::vector<GPUCoverage> named(const QStringList &names)
{
    std::vector<GPUCoverage> gpus;
    for (const QString &name : names)
        gpus.push_back({.name = name});
    return gpus;
}

/// One that uses the machine's memory, with these gigabytes in all and set aside.
GPUCoverage sharing(std::optional<int> total, std::optional<int> own = {})
{
    const auto bytes = [](int gigabytes) { return std::uint64_t(gigabytes) << 30; };
    GPUCoverage gpu{.name = u"Graphics"_s, .integrated = true, .usesSystemMemory = true};
    if (total)
        gpu.memoryTotal = bytes(*total);
    if (own)
        gpu.memoryOwn = bytes(*own);
    return gpu;
}

} // namespace

class TestGPUNames : public QObject {
    Q_OBJECT

private slots:
    void leaveOutMakerAndBrand_data();
    void leaveOutMakerAndBrand();
    void nameGroupsAndColumns_data();
    void nameGroupsAndColumns();
    void sayWhereMemoryLies_data();
    void sayWhereMemoryLies();
    void tellWhyMemoryIsNotTold();
};

void TestGPUNames::leaveOutMakerAndBrand_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("shortName");
    const auto row = [](const QString &name, const QString &shortName) {
        QTest::newRow(qPrintable(name)) << name << shortName;
    };
    row(u"NVIDIA GeForce RTX 3090"_s, u"RTX 3090"_s);
    row(u"NVIDIA RTX A6000"_s, u"RTX A6000"_s);
    row(u"NVIDIA GeForce RTX 3060 Laptop GPU"_s, u"RTX 3060"_s);
    row(u"AMD Radeon RX 7900 XTX"_s, u"RX 7900 XTX"_s);
    row(u"Intel Arc A770 Graphics"_s, u"Arc A770"_s);
    row(u"NVIDIA GPU 0"_s, u"GPU 0"_s);
    row(u"AMD Radeon Graphics"_s, u"AMD Radeon Graphics"_s); // Nothing would be left.
    row(QString(), QString());
}

void TestGPUNames::leaveOutMakerAndBrand()
{
    QFETCH(QString, name);
    QTEST(shortGPUName(name), "shortName");
}

void TestGPUNames::nameGroupsAndColumns_data()
{
    QTest::addColumn<std::vector<GPUCoverage>>("gpus");
    QTest::addColumn<QString>("group");
    QTest::addColumn<QString>("lastColumn");
    QTest::newRow("one") << named({u"NVIDIA GeForce RTX 4090"_s}) << u"NVIDIA GeForce RTX 4090"_s
                         << u"GPU 0"_s;
    QTest::newRow("alike") << named({u"NVIDIA RTX A6000"_s, u"NVIDIA RTX A6000"_s})
                           << u"2 × NVIDIA RTX A6000"_s << u"GPU 1"_s;
    QTest::newRow("unlike") << named({u"NVIDIA RTX A6000"_s, u"AMD Radeon RX 6800"_s})
                            << u"2 graphics cards"_s << u"RX 6800"_s;
    std::vector<GPUCoverage> integrated = named({u"A"_s, u"B"_s});
    integrated[0].integrated = integrated[1].integrated = true;
    QTest::newRow("unlike and integrated") << integrated << u"2 GPUs"_s << u"B"_s;
}

void TestGPUNames::nameGroupsAndColumns()
{
    QFETCH(std::vector<GPUCoverage>, gpus);
    QTEST(gpuGroupName(gpus), "group");
    QTEST(gpuColumnName(gpus, gpus.size() - 1), "lastColumn");
    QCOMPARE(gpuGroupName({}), QString());
}

void TestGPUNames::sayWhereMemoryLies_data()
{
    QTest::addColumn<std::vector<GPUCoverage>>("gpus");
    QTest::addColumn<QString>("heading");
    QTest::newRow("a card's own") << named({u"Card"_s}) << u"Card"_s;
    QTest::newRow("set aside and shared")
        << std::vector{sharing(16, 1)} << u"1 GB own + 15 GB of RAM"_s;
    QTest::newRow("shared alone") << std::vector{sharing(120)} << u"120 GB of RAM"_s;
    QTest::newRow("more set aside than there is")
        << std::vector{sharing(2, 4)} << u"2 GB own + 0 GB of RAM"_s;
    QTest::newRow("a total that is not known") << std::vector{sharing({})} << u"Graphics"_s;
}

void TestGPUNames::sayWhereMemoryLies()
{
    QFETCH(std::vector<GPUCoverage>, gpus);
    QTEST(gpuMemoryHeading(gpus), "heading");
}

void TestGPUNames::tellWhyMemoryIsNotTold()
{
    MachineCoverage machine{.isWhole = false, .gpus = named({u"Card"_s})};
    machine.gpus[0].memory = Coverage::asleep;
    QCOMPARE(gpuMemoryNotes(machine),
             QStringList{u"Memory of Card: the device sleeps and is left asleep."_s});
    machine.gpus[0].memory = Coverage::known;
    QCOMPARE(gpuMemoryNotes(machine), QStringList());
}

QTEST_GUILESS_MAIN(TestGPUNames)
#include "tst_GPUNames.moc"
