#include "chip/ChipSource.h"
#include "cpu/ProcStatFile_linux.h"

#include <QTest>

#include <ctime>

#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace corvane;

namespace {

constexpr double burntTicks = 50; ///< Of 10 ms.

/// The last CPU that this process may run on.
int allowedCPU()
{
    cpu_set_t allowed;
    CPU_ZERO(&allowed);
    sched_getaffinity(0, sizeof allowed, &allowed);
    int found = -1;
    for (int cpu = 0; cpu < CPU_SETSIZE; ++cpu) {
        if (CPU_ISSET(cpu, &allowed))
            found = cpu;
    }
    return found;
}

/// A child that uses up its CPU time on one CPU and ends. True when it did.
bool burnOn(int cpu)
{
    const pid_t child = fork();
    if (child == 0) {
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(cpu, &one);
        if (sched_setaffinity(0, sizeof one, &one) != 0)
            _exit(1);
        while (std::clock() < burntTicks / 100 * CLOCKS_PER_SEC) { }
        _exit(0);
    }
    int status = -1;
    return child > 0 && waitpid(child, &status, 0) == child && status == 0;
}

double busyTicks(const CoreTicks &from, const CoreTicks &to)
{
    const auto step = [](std::uint32_t a, std::uint32_t b) { return double(b - a); };
    return step(from.user, to.user) + step(from.system, to.system) + step(from.nice, to.nice);
}

} // namespace

/// The real load of the machine that the test runs on. Lower bounds alone: others use it too.
class TestChipOfThisMachine : public QObject {
    Q_OBJECT

private slots:
    void showsTheLoadOfAProcess();
};

void TestChipOfThisMachine::showsTheLoadOfAProcess()
{
    const int cpu = allowedCPU();
    QVERIFY(cpu >= 0);
    ProcStatFile cores;
    const auto before = cores.read();
    QVERIFY(before && before->size() > std::size_t(cpu));
    const ChipSource chip = openChipSource();
    QVERIFY(chip);

    QVERIFY(burnOn(cpu));

    const auto reading = chip();
    const auto after = cores.read();
    QVERIFY(reading && after);
    // The kernel counts whole ticks, so that one at each end may be missed.
    constexpr double leastTicks = burntTicks - 2;
    const auto place = std::size_t(cpu);
    const double busy = busyTicks(before->at(place), after->at(place));
    QVERIFY2(busy >= leastTicks, QByteArray::number(busy).constData());

    double all = 0; // Of a longer time than the reading's: the share is not smaller there.
    for (std::size_t core = 0; core < after->size(); ++core)
        all += busyTicks(before->at(core), after->at(core)) + after->at(core).idle
            - before->at(core).idle;
    QVERIFY2(reading->cpuActiveFraction >= leastTicks / all,
             QByteArray::number(reading->cpuActiveFraction).constData());
    QCOMPARE(reading->cpuCoreUtilizations.size(), after->size());
}

QTEST_GUILESS_MAIN(TestChipOfThisMachine)
#include "tst_ChipOfThisMachine.moc"
