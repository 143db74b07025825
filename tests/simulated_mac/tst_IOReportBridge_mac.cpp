#include "chip/IOReportBridge_mac.h"
#include "simulated_mac/SimulatedMac.h"

#include <QTest>

#include <limits>

using namespace corvane;
using namespace corvane::simulated;
using namespace Qt::StringLiterals;

namespace {

constexpr std::int64_t noCounter = std::numeric_limits<std::int64_t>::min();

const std::vector<ChannelGroupRequest> allRequests{
    {.group = "Energy Model"},
    {.group = "GPU Stats"},
    {.group = "CPU Stats", .subgroup = "CPU Complex Performance States"},
};

/// A channel of a difference with its texts copied.
struct Visited {
    std::string group = {};
    std::string subgroup = {};
    std::string name = {};
    std::optional<std::string> unit = {};
    std::int64_t value = 0;
    std::vector<std::pair<std::string, std::int64_t>> states = {};

    friend bool operator==(const Visited &, const Visited &) = default;
};

std::vector<Visited> visited(const IOReportBridge &bridge, const IOReportBridge::Sample *delta)
{
    std::vector<Visited> channels;
    bridge.iterate(delta, [&channels](const ReportingChannel &channel) {
        Visited copy{.group = std::string(channel.group),
                     .subgroup = std::string(channel.subgroup),
                     .name = std::string(channel.name),
                     .value = channel.value};
        if (channel.unit)
            copy.unit = std::string(*channel.unit);
        for (const ChannelState &state : channel.states)
            copy.states.emplace_back(state.name, state.residency);
        channels.push_back(std::move(copy));
    });
    return channels;
}

/// What one second brings on a machine with these channels alone.
std::vector<Visited> oneSecondOf(const std::vector<Channel> &channels)
{
    Machine machine = baseM1();
    machine.channels = channels;
    mac().boot(machine);
    const auto bridge = IOReportBridge::withChannelGroups(allRequests);
    if (!bridge)
        return {};
    const auto before = bridge->takeSample();
    mac().advance(1);
    const auto after = bridge->takeSample();
    return visited(*bridge, bridge->delta(before.get(), after.get()).get());
}

Channel energyChannel(const std::string &name, std::int64_t perSecond)
{
    return {.group = "Energy Model", .name = name, .unit = "mJ", .perSecond = perSecond};
}

/// A bridge over all requests and a second of its channels, with one failing call after the
/// bridge was made.
std::vector<Visited> oneSecondWithFailing(Call call, Way way)
{
    Machine machine = baseM1();
    machine.channels = {
        energyChannel("CPU Energy", 2500),
        {.group = "GPU Stats",
         .subgroup = "GPU Performance States",
         .name = "GPUPH",
         .unit = "24Mticks",
         .format = Channel::Format::states,
         .states = {{"OFF", 4}, {"P1", 20}}},
    };
    mac().boot(machine);
    const auto bridge = IOReportBridge::withChannelGroups(allRequests);
    const auto before = bridge->takeSample();
    mac().advance(1);
    const auto after = bridge->takeSample();
    const auto delta = bridge->delta(before.get(), after.get());
    faults().failAlways(call, way);
    auto channels = visited(*bridge, delta.get());
    faults().clear();
    return channels;
}

} // namespace

class TestIOReportBridge : public QObject {
    Q_OBJECT

private slots:
    void init() { mac().boot(baseM1()); }
    void findsTheLibrary_data();
    void findsTheLibrary();
    void needsEveryFunction_data();
    void needsEveryFunction();
    void asksForGroups_data();
    void asksForGroups();
    void releasesEverything();
    void releasesWhatAFailedConstructionMade_data();
    void releasesWhatAFailedConstructionMade();
    void goesOnWithoutAGroup();
    void keepsTheGroupsThatTheSystemAccepts_data();
    void keepsTheGroupsThatTheSystemAccepts();
    void takesSamples();
    void hasNoDeltaWithoutBothSides();
    void showsChannels();
    void readsTextsOfAnyStorage();
    void removesDiePrefixes_data();
    void removesDiePrefixes();
    void showsAbsence_data();
    void showsAbsence();
    void keepsNoStatesOfAnAbsurdCount();
};

void TestIOReportBridge::findsTheLibrary_data()
{
    QTest::addColumn<bool>("framework");
    QTest::addColumn<bool>("library");
    QTest::addColumn<bool>("loaded");
    QTest::addColumn<bool>("found");
    QTest::addColumn<int>("opened");
    QTest::newRow("at the framework's path") << true << false << false << true << 1;
    QTest::newRow("at both paths: the framework's is enough") << true << true << false << true << 1;
    QTest::newRow("at its plain path only") << false << true << false << true << 2;
    QTest::newRow("nowhere, but in the process already") << false << false << true << true << 1;
    QTest::newRow("nowhere at all") << false << false << false << false << 2;
}

void TestIOReportBridge::findsTheLibrary()
{
    QFETCH(bool, framework);
    QFETCH(bool, library);
    QFETCH(bool, loaded);
    Machine machine = baseM1();
    machine.hasReportingFramework = framework;
    machine.hasReportingLibrary = library;
    machine.reportingIsLoaded = loaded;
    mac().boot(machine);

    const auto bridge = IOReportBridge::withChannelGroups(allRequests);
    QTEST(bridge != nullptr, "found");
    const auto &opened = mac().openedLibraries;
    QTEST(static_cast<int>(opened.size()), "opened");
    QCOMPARE(opened[0].path,
             std::string("/System/Library/PrivateFrameworks/IOReport.framework/IOReport"));
    QCOMPARE(opened[0].mode, 9); // Bound lazily, seen by all.
    if (opened.size() > 1) {
        QCOMPARE(opened[1].path, std::string("/usr/lib/libIOReport.dylib"));
        QCOMPARE(opened[1].mode, 9);
    }
}

void TestIOReportBridge::needsEveryFunction_data()
{
    QTest::addColumn<QByteArray>("missing");
    for (const char *name :
         {"CopyChannelsInGroup", "MergeChannels", "CreateSubscription", "CreateSamples",
          "CreateSamplesDelta", "Iterate", "ChannelGetGroup", "ChannelGetSubGroup",
          "ChannelGetChannelName", "ChannelGetUnitLabel", "SimpleGetIntegerValue", "StateGetCount",
          "StateGetNameForIndex", "StateGetResidency"})
        QTest::newRow(name) << QByteArray("IOReport") + name;
}

void TestIOReportBridge::needsEveryFunction()
{
    QFETCH(QByteArray, missing);
    Machine machine = baseM1();
    machine.missingSymbol = missing.toStdString();
    mac().boot(machine);
    const Accounts before = accounts();
    QVERIFY(!IOReportBridge::withChannelGroups(allRequests));
    QVERIFY(accounts() == before);
    QCOMPARE(mac().openedLibraries.size(), 2U);
}

void TestIOReportBridge::asksForGroups_data()
{
    QTest::addColumn<std::vector<ChannelGroupRequest>>("requests");
    QTest::addColumn<int>("channels"); // -1: no bridge.
    using Requests = std::vector<ChannelGroupRequest>;
    QTest::newRow("nothing asked for") << Requests{} << -1;
    QTest::newRow("a request without a group is skipped")
        << Requests{{.subgroup = "CPU Complex Performance States"}} << -1;
    QTest::newRow("a group that no channel is in") << Requests{{.group = "No Stats"}} << -1;
    QTest::newRow("a subgroup that no channel is in")
        << Requests{{.group = "CPU Stats", .subgroup = "No States"}} << -1;
    QTest::newRow("a group with a subgroup")
        << Requests{{.group = "CPU Stats", .subgroup = "CPU Complex Performance States"}} << 4;
    QTest::newRow("a group with all of its subgroups") << Requests{{.group = "CPU Stats"}} << 6;
    QTest::newRow("an empty group before one with channels")
        << Requests{{.group = "No Stats"}, {.group = "GPU Stats"}} << 5;
    QTest::newRow("groups are merged in order") << allRequests << 42;
}

void TestIOReportBridge::asksForGroups()
{
    QFETCH(std::vector<ChannelGroupRequest>, requests);
    QFETCH(int, channels);
    const Accounts before = accounts();
    {
        const auto bridge = IOReportBridge::withChannelGroups(requests);
        QCOMPARE(bridge != nullptr, channels >= 0);
        if (!bridge)
            return;
        const auto first = bridge->takeSample();
        const auto second = bridge->takeSample();
        const auto delta = bridge->delta(first.get(), second.get());
        const auto seen = visited(*bridge, delta.get());
        QCOMPARE(static_cast<int>(seen.size()), channels);
        QCOMPARE(seen.back().group, *requests.back().group);
    }
    QCOMPARE(accounts().objects, before.objects + 1);
}

void TestIOReportBridge::releasesEverything()
{
    const Accounts before = accounts();
    {
        const auto bridge = IOReportBridge::withChannelGroups(allRequests);
        QVERIFY(bridge);
        const Accounts held = accounts();
        QCOMPARE(held.objects, before.objects + 2); // The subscription and the merged channels.
        for (int tick = 0; tick < 10; ++tick) {
            const auto first = bridge->takeSample();
            const auto second = bridge->takeSample();
            bridge->iterate(bridge->delta(first.get(), second.get()).get(),
                            [](const ReportingChannel &) {});
        }
        QVERIFY(accounts() == held);
    }
    // The subscription stays for the life of the process.
    QCOMPARE(accounts().objects, before.objects + 1);
    QCOMPARE(accounts().references, before.references + 1);
    QCOMPARE(accounts().subscriptions, before.subscriptions + 1);
}

void TestIOReportBridge::releasesWhatAFailedConstructionMade_data()
{
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("way");
    const auto row = [](const char *name, Call call, Way way) {
        QTest::newRow(name) << static_cast<int>(call) << static_cast<int>(way);
    };
    row("no group answers", Call::IOReportCopyChannelsInGroup, Way::null);
    row("all groups are empty", Call::IOReportCopyChannelsInGroup, Way::empty);
    row("no subscription", Call::IOReportCreateSubscription, Way::null);
    row("no string to ask with", Call::CFStringCreateWithCString, Way::null);
    row("no library opens", Call::dlopen, Way::null);
    row("no symbol is found", Call::dlsym, Way::null);
}

void TestIOReportBridge::releasesWhatAFailedConstructionMade()
{
    QFETCH(int, call);
    QFETCH(int, way);
    faults().failAlways(static_cast<Call>(call), static_cast<Way>(way));
    const Accounts before = accounts();
    QVERIFY(!IOReportBridge::withChannelGroups(allRequests));
    QVERIFY(accounts() == before);
}

void TestIOReportBridge::goesOnWithoutAGroup()
{
    for (const Way way : {Way::null, Way::empty}) {
        for (int use = 1; use <= 3; ++use) {
            mac().boot(baseM1());
            faults().failOnce(Call::IOReportCopyChannelsInGroup, way, use);
            const auto bridge = IOReportBridge::withChannelGroups(allRequests);
            QVERIFY(bridge);
            const auto first = bridge->takeSample();
            const auto second = bridge->takeSample();
            const auto seen = visited(*bridge, bridge->delta(first.get(), second.get()).get());
            for (std::size_t index = 0; index < allRequests.size(); ++index) {
                const auto count =
                    std::count_if(seen.begin(), seen.end(), [&](const Visited &channel) {
                        return channel.group == allRequests[index].group;
                    });
                QCOMPARE(count == 0, static_cast<int>(index) == use - 1);
            }
        }
    }

    mac().boot(baseM1());
    faults().failAlways(Call::IOReportMergeChannels, Way::error);
    const auto bridge = IOReportBridge::withChannelGroups(allRequests);
    QVERIFY(bridge);
    const auto sample = bridge->takeSample();
    for (const Visited &channel : visited(*bridge, bridge->delta(sample.get(), sample.get()).get()))
        QCOMPARE(channel.group, std::string("Energy Model"));
}

void TestIOReportBridge::keepsTheGroupsThatTheSystemAccepts_data()
{
    QTest::addColumn<QStringList>("refused");
    QTest::addColumn<int>("channels"); // 0: no bridge.
    QTest::addColumn<int>("subscriptions");
    QTest::newRow("none is refused") << QStringList{} << 42 << 1;
    QTest::newRow("one") << QStringList{u"GPU Stats"_s} << 37 << 5;
    QTest::newRow("the first") << QStringList{u"Energy Model"_s} << 9 << 5;
    QTest::newRow("two") << QStringList{u"Energy Model"_s, u"GPU Stats"_s} << 4 << 5;
    QTest::newRow("all") << QStringList{u"Energy Model"_s, u"GPU Stats"_s, u"CPU Stats"_s} << 0
                         << 4;
}

void TestIOReportBridge::keepsTheGroupsThatTheSystemAccepts()
{
    QFETCH(QStringList, refused);
    QFETCH(int, channels);
    for (const QString &group : refused)
        mac().machine.refusedGroups.insert(group.toStdString());
    const Accounts before = accounts();
    {
        const auto bridge = IOReportBridge::withChannelGroups(allRequests);
        QCOMPARE(bridge != nullptr, channels > 0);
        QTEST(faults().uses(Call::IOReportCreateSubscription), "subscriptions");
        if (bridge) {
            const auto sample = bridge->takeSample();
            const auto seen = visited(*bridge, bridge->delta(sample.get(), sample.get()).get());
            QCOMPARE(static_cast<int>(seen.size()), channels);
        }
    }
    QCOMPARE(accounts().subscriptions, before.subscriptions + (channels > 0 ? 1 : 0));
    QCOMPARE(accounts().objects, before.objects + (channels > 0 ? 1 : 0));
}

void TestIOReportBridge::takesSamples()
{
    const auto bridge = IOReportBridge::withChannelGroups(allRequests);
    const Accounts before = accounts();
    faults().failOnce(Call::IOReportCreateSamples, Way::null, 2);
    QVERIFY(bridge->takeSample());
    QVERIFY(!bridge->takeSample());
    QVERIFY(bridge->takeSample());
    faults().failOnce(Call::IOReportCreateSamplesDelta, Way::null);
    const auto sample = bridge->takeSample();
    QVERIFY(!bridge->delta(sample.get(), sample.get()));
    QVERIFY(bridge->delta(sample.get(), sample.get()));
    QCOMPARE(accounts().objects, before.objects + 1 + 42); // The sample with its channels.
}

void TestIOReportBridge::hasNoDeltaWithoutBothSides()
{
    const auto bridge = IOReportBridge::withChannelGroups(allRequests);
    const auto sample = bridge->takeSample();
    QVERIFY(!bridge->delta(nullptr, sample.get()));
    QVERIFY(!bridge->delta(sample.get(), nullptr));
    QVERIFY(visited(*bridge, nullptr).empty());
    QCOMPARE(faults().uses(Call::IOReportCreateSamplesDelta), 0);
    QCOMPARE(faults().uses(Call::IOReportIterate), 0);
}

void TestIOReportBridge::showsChannels()
{
    const auto seen = oneSecondOf({
        {.group = "Energy Model", .name = "CPU Energy", .unit = " mJ ", .perSecond = 2500},
        {.group = "Energy Model", .subgroup = "", .name = "running backwards", .perSecond = -5},
        {.group = "GPU Stats",
         .subgroup = "GPU Performance States",
         .name = "GPUPH",
         .unit = "24Mticks",
         .format = Channel::Format::states,
         .states = {{"OFF", 20'000'000}, {"P1", 0}, {std::nullopt, 4'000'000}}},
        {.group = "GPU Stats",
         .subgroup = "Active Time Histogram",
         .name = "GPU Active Time",
         .format = Channel::Format::histogram},
        {.group = "GPU Stats", .name = "no states", .format = Channel::Format::states},
    });
    const std::vector<Visited> expected{
        {"Energy Model", "", "CPU Energy", " mJ ", 2500, {}},
        {"Energy Model", "", "running backwards", std::nullopt, -5, {}},
        {"GPU Stats",
         "GPU Performance States",
         "GPUPH",
         "24Mticks",
         noCounter,
         {{"OFF", 20'000'000}, {"P1", 0}, {"", 4'000'000}}},
        {"GPU Stats", "Active Time Histogram", "GPU Active Time", std::nullopt, noCounter, {}},
        {"GPU Stats", "", "no states", std::nullopt, noCounter, {}},
    };
    QVERIFY(seen == expected);
}

void TestIOReportBridge::readsTextsOfAnyStorage()
{
    const std::vector<Channel> channels{
        {.group = "Energy Model", .name = "Énergie ∞", .unit = "μJ", .perSecond = 1},
        {.group = "GPU Stats",
         .name = "GPUPH",
         .format = Channel::Format::states,
         .states = {{"Überlast", 1}, {"OFF", 2}, {"🌋", 3}}},
    };
    const std::vector<Visited> expected{
        {"Energy Model", "", "Énergie ∞", "μJ", 1, {}},
        {"GPU Stats",
         "",
         "GPUPH",
         std::nullopt,
         noCounter,
         {{"Überlast", 1}, {"OFF", 2}, {"🌋", 3}}},
    };
    QVERIFY(oneSecondOf(channels) == expected);
}

void TestIOReportBridge::removesDiePrefixes_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QStringList>("expected");
    const auto row = [](const char *name, const QStringList &names, const QStringList &expected) {
        QTest::newRow(name) << names << expected;
    };
    row("both dies of a chip without a total", {u"DIE_0_CPU Energy"_s, u"DIE_1_CPU Energy"_s},
        {u"CPU Energy"_s, u"CPU Energy"_s});
    row("a total beside the dies, after them",
        {u"DIE_0_CPU Energy"_s, u"DIE_1_CPU Energy"_s, u"CPU Energy"_s},
        {u"DIE_0_CPU Energy"_s, u"DIE_1_CPU Energy"_s, u"CPU Energy"_s});
    row("a total beside the dies, before them",
        {u"CPU Energy"_s, u"DIE_0_CPU Energy"_s, u"DIE_0_ISP"_s},
        {u"CPU Energy"_s, u"DIE_0_CPU Energy"_s, u"ISP"_s});
    row("dies as newer systems write them", {u"DIE0 CPU Energy"_s, u"DIE1 CPU Energy"_s},
        {u"CPU Energy"_s, u"CPU Energy"_s});
    row("names without a die", {u"ANE0_0"_s, u"DIE_0_"_s, u""_s},
        {u"ANE0_0"_s, u"DIE_0_"_s, u""_s});
}

void TestIOReportBridge::removesDiePrefixes()
{
    QFETCH(QStringList, names);
    std::vector<Channel> channels;
    for (const QString &name : names)
        channels.push_back(energyChannel(name.toStdString(), 1));
    QStringList seen;
    for (const Visited &channel : oneSecondOf(channels))
        seen.append(QString::fromStdString(channel.name));
    QTEST(seen, "expected");
}

void TestIOReportBridge::showsAbsence_data()
{
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("way");
    QTest::addColumn<std::vector<Visited>>("expected");
    const Visited energy{"Energy Model", "", "CPU Energy", "mJ", 2500, {}};
    const Visited gpu{"GPU Stats", "GPU Performance States", "GPUPH", "24Mticks",
                      noCounter,   {{"OFF", 4}, {"P1", 20}}};
    const auto row = [&](const char *name, Call call, Way way, auto change) {
        std::vector<Visited> expected{energy, gpu};
        change(expected);
        QTest::newRow(name) << static_cast<int>(call) << static_cast<int>(way) << expected;
    };
    using Channels = std::vector<Visited>;
    row("no iteration", Call::IOReportIterate, Way::error, [](Channels &all) { all.clear(); });
    row("no group", Call::IOReportChannelGetGroup, Way::null, [](Channels &all) {
        for (Visited &channel : all)
            channel.group.clear();
    });
    row("no subgroup", Call::IOReportChannelGetSubGroup, Way::null,
        [](Channels &all) { all[1].subgroup.clear(); });
    row("no name", Call::IOReportChannelGetChannelName, Way::null, [](Channels &all) {
        for (Visited &channel : all)
            channel.name.clear();
    });
    row("no unit", Call::IOReportChannelGetUnitLabel, Way::null, [](Channels &all) {
        for (Visited &channel : all)
            channel.unit.reset();
    });
    row("no counter", Call::IOReportSimpleGetIntegerValue, Way::error,
        [](Channels &all) { all[0].value = noCounter; });
    row("no count of states", Call::IOReportStateGetCount, Way::error,
        [](Channels &all) { all[1].states.clear(); });
    row("no state names", Call::IOReportStateGetNameForIndex, Way::null, [](Channels &all) {
        for (auto &state : all[1].states)
            state.first.clear();
    });
    row("no residencies", Call::IOReportStateGetResidency, Way::error, [](Channels &all) {
        for (auto &state : all[1].states)
            state.second = noCounter;
    });
    row("no text stored as UTF-8", Call::CFStringGetCStringPtr, Way::null, [](Channels &) {});
}

void TestIOReportBridge::showsAbsence()
{
    QFETCH(int, call);
    QFETCH(int, way);
    QFETCH(std::vector<Visited>, expected);
    QVERIFY(oneSecondWithFailing(static_cast<Call>(call), static_cast<Way>(way)) == expected);
}

void TestIOReportBridge::keepsNoStatesOfAnAbsurdCount()
{
    // The garbage is of 32 bits: nearly every count is negative or absurd, and a walk through it
    // would take minutes.
    const auto bridge = IOReportBridge::withChannelGroups(allRequests);
    const auto sample = bridge->takeSample();
    const auto delta = bridge->delta(sample.get(), sample.get());
    faults().failAlways(Call::IOReportStateGetCount, Way::garbage);
    for (int round = 0; round < 50; ++round) {
        for (const Visited &channel : visited(*bridge, delta.get()))
            QVERIFY(channel.states.size() <= 1024);
    }
    QCOMPARE(faults().uses(Call::IOReportStateGetCount), 50 * 42);
}

QTEST_APPLESS_MAIN(TestIOReportBridge)
#include "tst_IOReportBridge_mac.moc"
