#include "chip/FrequencyTables_mac.h"
#include "simulated_mac/SimulatedMac.h"

#include <QTest>

using namespace corvane;
using namespace corvane::simulated;

using Frequencies = std::vector<double>;

class TestFrequencyTablesOnMac : public QObject {
    Q_OBJECT

private slots:
    void readsBothClusters();
    void readsTheTablesThatClustersName_data();
    void readsTheTablesThatClustersName();
    void readsTables_data();
    void readsTables();
    void isEmptyWhenACallFails_data();
    void isEmptyWhenACallFails();
    void takesWhatWholeRecordsThereAre();
    void survivesGarbage();
};

void TestFrequencyTablesOnMac::readsBothClusters()
{
    mac().boot(baseM1());
    const Accounts before = accounts();
    const FrequencyTables tables = readFrequencyTables();
    QCOMPARE(tables.efficiency, (Frequencies{600, 972, 1332, 1704, 2064}));
    QCOMPARE(tables.performance.size(), 15U);
    QCOMPARE(tables.performance.front(), 600.0);
    QCOMPARE(tables.performance.back(), 3204.0);
    QVERIFY(accounts() == before);
}

void TestFrequencyTablesOnMac::readsTheTablesThatClustersName_data()
{
    QTest::addColumn<std::vector<std::uint8_t>>("clusters");
    QTest::addColumn<double>("top"); // Of the slower clusters; 0: no table.
    const auto row = [](const char *name,
                        const std::vector<std::pair<std::uint32_t, std::uint32_t>> &records,
                        double top) { QTest::newRow(name) << voltageStates(records) << top; };
    row("two slower tables and the faster one", {{22, 0}, {23, 0}, {5, 1}}, 4380);
    row("the faster one first", {{5, 1}, {22, 0}}, 4380);
    row("tiers that count the other way", {{5, 0}, {22, 1}}, 4380);
    row("one slower table", {{23, 7}}, 4380);
    row("the faster table alone", {{5, 1}}, 0);
    row("no clusters", {}, 0);
    row("a table that is missing", {{22, 0}, {24, 0}}, 0);
    row("numbers that are no table's", {{0x16'0000, 0}, {5, 1}}, 0);
    QTest::newRow("part of a record") << std::vector<std::uint8_t>{22, 0, 0, 0} << 0.0;
    auto longer = voltageStates({{22, 0}});
    longer.push_back(0);
    QTest::newRow("more than whole records") << longer << 0.0;
}

void TestFrequencyTablesOnMac::readsTheTablesThatClustersName()
{
    QFETCH(std::vector<std::uint8_t>, clusters);
    QFETCH(double, top);
    mac().boot(proM5());
    mac().machine.tables["acc-clusters"] = clusters;
    const FrequencyTables tables = readFrequencyTables();
    QCOMPARE(tables.efficiency.empty() ? 0 : tables.efficiency.back(), top);
    QCOMPARE(tables.performance.back(), 4608.0);

    mac().machine.tables.erase("acc-clusters");
    QVERIFY(readFrequencyTables().efficiency.empty());
    // A chip with a table of efficiency cores keeps to it.
    mac().machine.tables["voltage-states1-sram"] =
        voltageStates({{972'000, 700}, {3'048'000, 800}});
    QCOMPARE(readFrequencyTables().efficiency, (Frequencies{972, 3048}));
}

void TestFrequencyTablesOnMac::readsTables_data()
{
    QTest::addColumn<std::vector<std::uint8_t>>("bytes");
    QTest::addColumn<Frequencies>("expected");
    QTest::newRow("in hertz") << voltageStates({{912'000'000, 590}, {2'424'000'000, 831}})
                              << Frequencies{912, 2424};
    QTest::newRow("in kilohertz") << std::vector<std::uint8_t>{0x60, 0x90, 0x0f, 0x00, 0x16, 0x03,
                                                               0x00, 0x00, 0x60, 0x6c, 0x15, 0x00,
                                                               0x20, 0x03, 0x00, 0x00}
                                  << Frequencies{1020, 1404};
    QTest::newRow("with a frequency of zero")
        << voltageStates({{0, 400}, {389'000'000, 500}}) << Frequencies{389};
    QTest::newRow("of no bytes") << std::vector<std::uint8_t>{} << Frequencies{};
}

void TestFrequencyTablesOnMac::readsTables()
{
    QFETCH(std::vector<std::uint8_t>, bytes);
    mac().boot(baseM1());
    mac().machine.tables["voltage-states1-sram"] = bytes;
    QTEST(IORegistryReader::readPmgrFrequencies("voltage-states1-sram"), "expected");
}

void TestFrequencyTablesOnMac::isEmptyWhenACallFails_data()
{
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("way");
    const auto row = [](const char *name, Call call, Way way) {
        QTest::newRow(name) << static_cast<int>(call) << static_cast<int>(way);
    };
    row("no matching dictionary", Call::IOServiceNameMatching, Way::null);
    row("no power manager", Call::IOServiceGetMatchingService, Way::null);
    row("no key", Call::CFStringCreateWithCString, Way::null);
    row("no such property", Call::IORegistryEntryCreateCFProperty, Way::null);
    row("a text in its place", Call::IORegistryEntryCreateCFProperty, Way::wrongType);
    row("no bytes in it", Call::IORegistryEntryCreateCFProperty, Way::empty);
    row("its bytes cannot be had", Call::CFDataGetBytePtr, Way::null);
}

void TestFrequencyTablesOnMac::isEmptyWhenACallFails()
{
    QFETCH(int, call);
    QFETCH(int, way);
    mac().boot(baseM1());
    const Accounts before = accounts();
    faults().failAlways(static_cast<Call>(call), static_cast<Way>(way));
    const FrequencyTables tables = readFrequencyTables();
    QVERIFY(tables.efficiency.empty());
    QVERIFY(tables.performance.empty());
    QVERIFY(accounts() == before);

    // One cluster alone is read when only the other fails.
    faults().clear();
    faults().failOnce(static_cast<Call>(call), static_cast<Way>(way));
    const FrequencyTables half = readFrequencyTables();
    QVERIFY(half.efficiency.empty());
    QCOMPARE(half.performance.size(), 15U);
    QVERIFY(accounts() == before);
}

void TestFrequencyTablesOnMac::takesWhatWholeRecordsThereAre()
{
    mac().boot(baseM1());
    faults().failAlways(Call::IORegistryEntryCreateCFProperty, Way::shortAnswer); // 20 bytes
    QCOMPARE(readFrequencyTables().efficiency, (Frequencies{600, 972}));

    Machine virtualMachine = baseM1();
    virtualMachine.hasPowerManager = false;
    mac().boot(virtualMachine);
    QVERIFY(readFrequencyTables().efficiency.empty());
    mac().boot(baseM1());
    QVERIFY(IORegistryReader::readPmgrFrequencies("voltage-states2-sram").empty());
}

void TestFrequencyTablesOnMac::survivesGarbage()
{
    mac().boot(baseM1());
    const Accounts before = accounts();
    faults().failAlways(Call::IORegistryEntryCreateCFProperty, Way::garbage);
    for (int round = 0; round < 200; ++round) {
        for (const double frequency : readFrequencyTables().performance)
            QVERIFY(frequency > 0 && frequency < 4'294'967.296);
    }
    QVERIFY(accounts() == before);
}

QTEST_APPLESS_MAIN(TestFrequencyTablesOnMac)
#include "tst_FrequencyTables_mac.moc"
