// The simulation itself: what it does not notice, no test above it can.

#include "simulated_mac/SimulatedMac.h"

#include <IOKit/IOKitLib.h>
#include <dlfcn.h>
#include <mach/mach.h>
#include <sys/sysctl.h>

#include <QTest>

#include <limits>

#include <cerrno>
#include <set>

using namespace corvane::simulated;

class TestSimulatedMac : public QObject {
    Q_OBJECT

private slots:
    void init() { mac().boot(baseM1()); }
    void countsReferences();
    void noticesWrongUse();
    void consumesMatchingDictionaries();
    void noticesWrongMemoryGivenBack();
    void failsAtTheAskedUse();
    void failsRandomlyButRepeatably();
    void knowsHowEveryCallFails();
    void stepsItsClock();
    void wrapsTicks();
    void publishesSlowCountersNowAndThen();
    void answersSizesFirst();
    void opensOnlyItsOwnLibraries();
    void hasThreeHundredChannelsOnTheMax();
};

void TestSimulatedMac::countsReferences()
{
    const Accounts before = accounts();
    const CFStringRef text =
        CFStringCreateWithCString(kCFAllocatorDefault, "text", kCFStringEncodingUTF8);
    CFRetain(text);
    QCOMPARE(accounts().objects, before.objects + 1);
    QCOMPARE(accounts().references, before.references + 2);
    CFRelease(text);
    QCOMPARE(accounts().objects, before.objects + 1);
    CFRelease(text);
    QVERIFY(accounts() == before);

    CFRelease(CFSTR("immortal"));
    CFRelease(CFSTR("immortal"));
    QVERIFY(CFSTR("immortal") == CFSTR("immortal"));
    QVERIFY(accounts() == before);
}

void TestSimulatedMac::noticesWrongUse()
{
    QVERIFY_THROWS_EXCEPTION(Misuse, CFRelease(nullptr));
    QVERIFY_THROWS_EXCEPTION(Misuse, CFStringGetLength(nullptr));
    const std::int32_t seven = 7;
    const CFNumberRef number = CFNumberCreate(nullptr, kCFNumberSInt32Type, &seven);
    QVERIFY_THROWS_EXCEPTION(Misuse, CFDataGetLength(reinterpret_cast<CFDataRef>(number)));
    CFRelease(number);
    QVERIFY_THROWS_EXCEPTION(Misuse, IOObjectRelease(0));
    QVERIFY_THROWS_EXCEPTION(Misuse, dlsym(nullptr, "IOReportIterate"));
}

void TestSimulatedMac::consumesMatchingDictionaries()
{
    const Accounts before = accounts();
    const io_service_t found =
        IOServiceGetMatchingService(kIOMainPortDefault, IOServiceNameMatching("pmgr"));
    QVERIFY(found != 0);
    QCOMPARE(accounts().registryEntries, before.registryEntries + 1);
    QCOMPARE(IOObjectRelease(found), KERN_SUCCESS);
    QVERIFY(accounts() == before);
    QVERIFY_THROWS_EXCEPTION(Misuse, IOObjectRelease(found));
    ledger().registryEntries = before.registryEntries;

    QCOMPARE(IOServiceGetMatchingService(kIOMainPortDefault, IOServiceNameMatching("none such")),
             0U);
    QVERIFY(accounts() == before);
}

void TestSimulatedMac::noticesWrongMemoryGivenBack()
{
    natural_t processors = 0;
    processor_info_array_t words = nullptr;
    mach_msg_type_number_t count = 0;
    const mach_port_t host = mach_host_self();
    QCOMPARE(host_processor_info(host, PROCESSOR_CPU_LOAD_INFO, &processors, &words, &count),
             KERN_SUCCESS);
    QCOMPARE(accounts().memoryBlocks, 1L);
    const auto address = reinterpret_cast<vm_address_t>(words);
    QVERIFY_THROWS_EXCEPTION(Misuse, vm_deallocate(mach_task_self(), address, count));
    QCOMPARE(vm_deallocate(mach_task_self(), address, count * sizeof(integer_t)), KERN_SUCCESS);
    QVERIFY_THROWS_EXCEPTION(Misuse,
                             vm_deallocate(mach_task_self(), address, count * sizeof(integer_t)));
    QCOMPARE(accounts().memoryBlocks, 0L);
    QCOMPARE(accounts().hostRights, 1L);
}

void TestSimulatedMac::failsAtTheAskedUse()
{
    faults().failOnce(Call::sysctl, Way::error, 3);
    QVERIFY(!faults().ask(Call::sysctl));
    QVERIFY(!faults().ask(Call::sysctlbyname));
    QVERIFY(!faults().ask(Call::sysctl));
    QVERIFY(faults().ask(Call::sysctl) == Way::error);
    QVERIFY(!faults().ask(Call::sysctl));
    QCOMPARE(faults().uses(Call::sysctl), 4);
    faults().failAlways(Call::sysctl, Way::garbage);
    QVERIFY(faults().ask(Call::sysctl) == Way::garbage);
    QVERIFY(faults().ask(Call::sysctl) == Way::garbage);
    faults().clear();
    QVERIFY(!faults().ask(Call::sysctl));
}

void TestSimulatedMac::failsRandomlyButRepeatably()
{
    const auto run = [] {
        faults().clear();
        faults().failRandomly(1, 0.25);
        std::vector<std::optional<Way>> ways;
        for (int use = 0; use < 1000; ++use)
            ways.push_back(faults().ask(Call::host_processor_info));
        return ways;
    };
    const auto ways = run();
    QVERIFY(ways == run());
    const auto failed = std::count_if(ways.begin(), ways.end(), [](auto way) { return way; });
    QVERIFY(failed > 150 && failed < 350);
    QCOMPARE(std::set(ways.begin(), ways.end()).size(), 5U); // Four ways, and none.
}

void TestSimulatedMac::knowsHowEveryCallFails()
{
    for (std::size_t index = 0; index < waysToFail().size(); ++index) {
        QCOMPARE(static_cast<std::size_t>(waysToFail()[index].call), index);
        QVERIFY(!waysToFail()[index].ways.empty());
    }
    QCOMPARE(waysToFail().size(), callCount);
}

void TestSimulatedMac::stepsItsClock()
{
    const auto valueOf = [](const std::string &name) {
        const auto counters = mac().publishedCounters();
        for (std::size_t index = 0; index < counters.size(); ++index) {
            if (mac().machine.channels[index].name == name)
                return counters[index].value;
        }
        return std::int64_t(-1);
    };
    QCOMPARE(mac().clock(), 0.0);
    QCOMPARE(valueOf("CPU Energy"), std::int64_t(0));
    mac().advance(0.5);
    mac().advance(1.5);
    QCOMPARE(mac().clock(), 2.0);
    QCOMPARE(valueOf("CPU Energy"), std::int64_t(5000));
}

void TestSimulatedMac::wrapsTicks()
{
    const std::uint32_t user = mac().ticks()[0][CPU_STATE_USER];
    QVERIFY(user > 4'000'000'000U);
    mac().advance(10); // 30 ticks a second.
    QCOMPARE(mac().ticks()[0][CPU_STATE_USER], static_cast<std::uint32_t>(user + 300));
    QVERIFY(mac().ticks()[0][CPU_STATE_USER] < 1000U);
}

void TestSimulatedMac::publishesSlowCountersNowAndThen()
{
    mac().machine.channels[0].publishedEvery = 1.5;
    const std::int64_t perSecond = mac().machine.channels[0].perSecond;
    mac().advance(1);
    QCOMPARE(mac().publishedCounters()[0].value, std::int64_t(0));
    mac().advance(1);
    QCOMPARE(mac().publishedCounters()[0].value, perSecond * 3 / 2); // What it had after 1.5 s.
    mac().advance(1);
    QCOMPARE(mac().publishedCounters()[0].value, 3 * perSecond);
    mac().machine.channels[0].publishedEvery = std::numeric_limits<double>::infinity();
    mac().advance(100);
    QCOMPARE(mac().publishedCounters()[0].value, 3 * perSecond);
}

void TestSimulatedMac::answersSizesFirst()
{
    std::size_t size = 0;
    QCOMPARE(sysctlbyname("machdep.cpu.brand_string", nullptr, &size, nullptr, 0), 0);
    QCOMPARE(size, sizeof "Apple M1");
    char small[4] = {};
    size = sizeof small;
    QCOMPARE(sysctlbyname("machdep.cpu.brand_string", small, &size, nullptr, 0), -1);
    QCOMPARE(errno, ENOMEM);
    QCOMPARE(sysctlbyname("hw.nosuch", nullptr, &size, nullptr, 0), -1);
    QCOMPARE(errno, ENOENT);
}

void TestSimulatedMac::opensOnlyItsOwnLibraries()
{
    QVERIFY(!dlopen("libm.so.6", RTLD_LAZY));
    QVERIFY(!dlsym(RTLD_DEFAULT, "IOReportIterate"));
    QVERIFY(dlopen("/usr/lib/libIOReport.dylib", RTLD_LAZY));
    QVERIFY(dlsym(RTLD_DEFAULT, "IOReportIterate"));
    QVERIFY(!dlsym(RTLD_DEFAULT, "malloc"));
}

void TestSimulatedMac::hasThreeHundredChannelsOnTheMax()
{
    std::size_t subscribed = 0;
    for (const Channel &channel : maxM4().channels)
        subscribed += channel.subgroup != "CPU Core Performance States";
    QCOMPARE(subscribed, 300U);
}

QTEST_APPLESS_MAIN(TestSimulatedMac)
#include "tst_SimulatedMac.moc"
