#include "records/GPUHolders.h"

#include <QTest>

#include <memory>

using namespace corvane;
using namespace Qt::StringLiterals;

using Bytes = std::optional<std::uint64_t>;
using Holders = std::vector<GPUHolders>;

Q_DECLARE_METATYPE(SystemMetrics)
Q_DECLARE_METATYPE(Holders)
Q_DECLARE_METATYPE(Bytes)

namespace {

GPUCoverage card(const QString &device)
{
    return {.device = device, .memory = Coverage::known, .memoryTotal = 1000};
}

SystemMetrics sampleOf(const std::vector<GPUCoverage> &gpus, const std::vector<GPUMetrics> &metrics)
{
    SystemMetrics sample;
    sample.chip = ChipReading();
    sample.chip->coverage =
        std::make_shared<MachineCoverage>(MachineCoverage{.isWhole = false, .gpus = gpus});
    sample.chip->gpus = metrics;
    return sample;
}

} // namespace

class TestGPUHolders : public QObject {
    Q_OBJECT

private slots:
    void tellsWhatNobodyKnownHolds_data();
    void tellsWhatNobodyKnownHolds();
};

void TestGPUHolders::tellsWhatNobodyKnownHolds_data()
{
    QTest::addColumn<SystemMetrics>("sample");
    QTest::addColumn<Holders>("holders");
    QTest::addColumn<Bytes>("bytes");
    const GPUMetrics a{.device = u"a"_s, .memoryUsed = 700};
    const GPUMetrics b{.device = u"b"_s, .memoryUsed = 300};
    GPUMetrics bound = a;
    bound.memoryIsLowerBound = true;
    const Holders holders{{.device = u"a"_s, .knownBytes = 600}};
    QTest::newRow("one card") << sampleOf({card(u"a"_s)}, {a}) << holders << Bytes(100);
    QTest::newRow("a second card that nobody known uses")
        << sampleOf({card(u"a"_s), card(u"b"_s)}, {a, b}) << holders << Bytes(400);
    QTest::newRow("processes that hold more than is in use")
        << sampleOf({card(u"a"_s)}, {a}) << Holders{{.device = u"a"_s, .knownBytes = 800}}
        << Bytes(0);
    QTest::newRow("a lower bound") << sampleOf({card(u"a"_s)}, {bound}) << holders << Bytes();
    QTest::newRow("a card that was not read") << sampleOf({card(u"a"_s)}, {}) << holders << Bytes();
    QTest::newRow("no GPU") << sampleOf({}, {}) << Holders() << Bytes();
    QTest::newRow("before the first sample")
        << SystemMetrics::placeholder() << Holders() << Bytes();
}

void TestGPUHolders::tellsWhatNobodyKnownHolds()
{
    QFETCH(SystemMetrics, sample);
    QFETCH(Holders, holders);
    QTEST(unattributedMemory(sample, holders), "bytes");
}

QTEST_APPLESS_MAIN(TestGPUHolders)
#include "tst_GPUHolders.moc"
