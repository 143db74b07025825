// The host port is requested once for the life of the process, so a failure needs a process of its
// own.

#include "cpu/CPUCoreSampler.h"
#include "cpu/CoreTicks_mac.h"
#include "memory/MemorySampler.h"
#include "simulated_mac/SimulatedMac.h"

#include <QTest>

using namespace corvane;
using namespace corvane::simulated;

class TestNoHostPort : public QObject {
    Q_OBJECT

private slots:
    void givesNoReadings();
};

void TestNoHostPort::givesNoReadings()
{
    mac().boot(baseM1());
    faults().failAlways(Call::mach_host_self, Way::null);
    const MemorySnapshot memory = MemorySampler::sample();
    QCOMPARE(memory.total, std::uint64_t(17'179'869'184));
    QCOMPARE(memory.used, 0U);
    QVERIFY(CPUCoreSampler(readCoreTicks).sample().empty());
    QVERIFY(accounts() == Accounts{});
}

QTEST_APPLESS_MAIN(TestNoHostPort)
#include "tst_HostPort_mac.moc"
