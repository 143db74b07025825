// The page size is read once for the life of the process, so a failure needs a process of its own.

#include "memory/MemorySampler.h"
#include "simulated_mac/SimulatedMac.h"

#include <QTest>

using namespace corvane;
using namespace corvane::simulated;

class TestUnknownPageSize : public QObject {
    Q_OBJECT

private slots:
    void makesEverySizeFromPagesZero();
};

void TestUnknownPageSize::makesEverySizeFromPagesZero()
{
    mac().boot(baseM1());
    faults().failOnce(Call::host_page_size, Way::error);
    for (int read = 0; read < 2; ++read) {
        const MemorySnapshot memory = MemorySampler::sample();
        QCOMPARE(memory.total, std::uint64_t(17'179'869'184));
        QCOMPARE(memory.used, 0U);
        QCOMPARE(memory.free, 0U);
        QCOMPARE(memory.cached, 0U);
        QCOMPARE(memory.swapTotal, 2'147'483'648U);
    }
    QCOMPARE(faults().uses(Call::host_page_size), 1);
}

QTEST_APPLESS_MAIN(TestUnknownPageSize)
#include "tst_PageSize_mac.moc"
