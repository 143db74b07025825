#include "chip/IOReportBridge.h"
#include "support/MachineTree.h"
#include "support/Machines.h"

#include <QTest>

using namespace corvane;
using corvane::test::MachineTree;

using namespace Qt::StringLiterals;

using Requests = std::vector<ChannelGroupRequest>;

Q_DECLARE_METATYPE(Requests)

/// The bridge's promises; what its channels hold is told by the reader's test.
class TestIOReportBridgeLinux : public QObject {
    Q_OBJECT

private slots:
    void needsAChannel_data();
    void needsAChannel();
    void walksWhatWasAskedFor_data();
    void walksWhatWasAskedFor();
    void missingSamplesGiveNothing();
    void anySampleMayBeTheEarlierOne();
};

void TestIOReportBridgeLinux::needsAChannel_data()
{
    QTest::addColumn<QString>("machine");
    QTest::addColumn<Requests>("requests");
    QTest::addColumn<bool>("made");
    const QString desktop = u"amd-desktop"_s;
    const QString board = u"arm-board-chip"_s;
    QTest::newRow("no request") << desktop << Requests{} << false;
    QTest::newRow("a request without a group")
        << desktop << Requests{{.subgroup = "CPU Complex Performance States"}} << false;
    QTest::newRow("an unknown group") << desktop << Requests{{.group = "Fan Stats"}} << false;
    QTest::newRow("a subgroup that the group has not")
        << desktop << Requests{{.group = "CPU Stats", .subgroup = "CPU Core States"}} << false;
    QTest::newRow("a group without a subgroup")
        << desktop << Requests{{.group = "CPU Stats"}} << true;
    QTest::newRow("GPUs where there is one") << desktop << Requests{{.group = "GPU Stats"}} << true;
    QTest::newRow("GPUs where there is none") << board << Requests{{.group = "GPU Stats"}} << false;
    QTest::newRow("energy where nothing counts it")
        << board << Requests{{.group = "Energy Model"}} << false;
    QTest::newRow("one of several is enough")
        << board << Requests{{.group = "GPU Stats"}, {}, {.group = "CPU Stats"}} << true;
    QTest::newRow("a machine without kernel files")
        << u"no-such-machine"_s
        << Requests{{.group = "CPU Stats"}, {.group = "GPU Stats"}, {.group = "Energy Model"}}
        << false;
}

void TestIOReportBridgeLinux::needsAChannel()
{
    QFETCH(QString, machine);
    QFETCH(Requests, requests);
    const std::string root = test::machine(machine.toStdString());
    QTEST(IOReportBridge::withChannelGroups(requests, root) != nullptr, "made");
}

void TestIOReportBridgeLinux::walksWhatWasAskedFor_data()
{
    QTest::addColumn<Requests>("requests");
    QTest::addColumn<QStringList>("channels");
    const QString cpu = u"CPU Stats/CPU Complex Performance States/PCPU"_s;
    const QString gpu = u"GPU Stats//card"_s;
    const QString energyOfCPU = u"Energy Model//CPU Energy"_s;
    const QString energyOfGPU = u"Energy Model//GPU Energy"_s;
    QTest::newRow("load") << Requests{{.group = "CPU Stats"}} << QStringList{cpu};
    QTest::newRow("graphics") << Requests{{.group = "GPU Stats"}} << QStringList{gpu};
    QTest::newRow("energy") << Requests{{.group = "Energy Model"}}
                            << QStringList{energyOfCPU, energyOfGPU};
    QTest::newRow("all") << Requests{{.group = "Energy Model"},
                                     {.group = "GPU Stats"},
                                     {.group = "CPU Stats",
                                      .subgroup = "CPU Complex Performance States"}}
                         << QStringList{energyOfCPU, energyOfGPU, gpu, cpu};
}

void TestIOReportBridgeLinux::walksWhatWasAskedFor()
{
    QFETCH(Requests, requests);
    const auto bridge = IOReportBridge::withChannelGroups(requests, test::machine("amd-desktop"));
    const auto from = bridge->takeSample();
    const auto to = bridge->takeSample();
    QStringList channels;
    bridge->iterate(bridge->delta(from.get(), to.get()).get(),
                    [&channels](const ReportingChannel &channel) {
                        const auto text = [](std::string_view view) {
                            return QString::fromStdString(std::string(view));
                        };
                        const bool isGPU = channel.group == "GPU Stats";
                        channels << text(channel.group) + u'/' + text(channel.subgroup) + u'/'
                                + (isGPU ? u"card"_s : text(channel.name));
                    });
    QTEST(channels, "channels");
}

void TestIOReportBridgeLinux::missingSamplesGiveNothing()
{
    const auto bridge =
        IOReportBridge::withChannelGroups({{.group = "CPU Stats"}}, test::machine("amd-desktop"));
    const auto sample = bridge->takeSample();
    QVERIFY(sample);
    QVERIFY(!bridge->delta(nullptr, sample.get()));
    QVERIFY(!bridge->delta(sample.get(), nullptr));
    bridge->iterate(nullptr, [](const ReportingChannel &) { QFAIL("There is no channel."); });
}

void TestIOReportBridgeLinux::anySampleMayBeTheEarlierOne()
{
    const MachineTree tree("virtual-machine-chip");
    tree.write("proc/stat", "cpu0 0 0 0 0\ncpu1 0 0 0 0\n");
    const auto bridge = IOReportBridge::withChannelGroups({{.group = "CPU Stats"}}, tree.root());
    const auto first = bridge->takeSample();
    tree.write("proc/stat", "cpu0 10 0 0 90\ncpu1 0 0 0 100\n");
    const auto second = bridge->takeSample();
    tree.write("proc/stat", "cpu0 30 0 0 170\ncpu1 0 0 0 200\n");
    const auto third = bridge->takeSample();

    const auto activeTicks = [&bridge](const auto &from, const auto &to) {
        double ticks = -1;
        bridge->iterate(bridge->delta(from.get(), to.get()).get(),
                        [&ticks](const ReportingChannel &channel) {
                            ticks = double(channel.states.back().residency) / 1e6;
                        });
        return ticks;
    };
    QCOMPARE(activeTicks(first, second), 10.0);
    QCOMPARE(activeTicks(second, third), 20.0);
    QCOMPARE(activeTicks(first, third), 30.0); // As after a tick that failed.
}

QTEST_GUILESS_MAIN(TestIOReportBridgeLinux)
#include "tst_IOReportBridgeLinux.moc"
