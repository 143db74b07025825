#include "chip/FrequencyTables.h"
#include "simulated_mac/SimulatedMac.h"

#include <QTest>

using namespace corvane;
using namespace corvane::simulated;

using Frequencies = std::vector<double>;

class TestFrequencyTablesOnMac : public QObject {
    Q_OBJECT

private slots:
    void readsBothClusters();
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
