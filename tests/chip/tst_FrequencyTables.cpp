#include "chip/FrequencyTables.h"

#include <QTest>

using namespace corvane;

namespace {

/// One record of a voltage-state table: frequency and voltage, both little-endian.
QByteArray record(quint32 frequency, quint32 millivolts = 800)
{
    QByteArray bytes;
    for (const quint32 word : {frequency, millivolts}) {
        for (int shift = 0; shift < 32; shift += 8)
            bytes.append(static_cast<char>(word >> shift));
    }
    return bytes;
}

std::span<const std::byte> bytesOf(const QByteArray &table)
{
    return std::as_bytes(std::span(table.constData(), static_cast<std::size_t>(table.size())));
}

using Frequencies = QList<double>;

Frequencies listOf(const std::vector<double> &frequencies)
{
    return {frequencies.begin(), frequencies.end()};
}

} // namespace

class TestFrequencyTables : public QObject {
    Q_OBJECT

private slots:
    void parses_data();
    void parses();
    void scales_data();
    void scales();
    void parsesClusters_data();
    void parsesClusters();
    void choosesTheSlowerTable_data();
    void choosesTheSlowerTable();
};

void TestFrequencyTables::parses_data()
{
    QTest::addColumn<QByteArray>("table");
    QTest::addColumn<Frequencies>("expected");

    QTest::newRow("empty") << QByteArray() << Frequencies{};
    QTest::newRow("shorter than a record") << record(600'000'000).left(7) << Frequencies{};
    QTest::newRow("hertz become megahertz") << record(2'064'000'000) << Frequencies{2064};
    QTest::newRow("the order of the records stays")
        << record(972'000'000) + record(600'000'000) << Frequencies{972, 600};
    QTest::newRow("20 bytes hold two records") << record(600'000'000) + record(828'000'000)
            + record(1'056'000'000).left(4) << Frequencies{600, 828};
    QTest::newRow("15 bytes hold one record")
        << record(600'000'000) + record(828'000'000).left(7) << Frequencies{600};
    QTest::newRow("a frequency of 0 is dropped and the later ones move up") << record(0)
            + record(444'000'000) + record(0) + record(612'000'000) << Frequencies{444, 612};
    QTest::newRow("nothing but zeros") << record(0) + record(0) << Frequencies{};
    QTest::newRow("the voltage does not count")
        << record(600'000'000, 0) + record(828'000'000, 0xFFFFFFFF) << Frequencies{600, 828};
    QTest::newRow("the largest word") << record(0xFFFFFFFF) << Frequencies{4294.967295};
    QTest::newRow("the low byte comes first")
        << QByteArray::fromHex("0046C323 0D030000") << Frequencies{600};
    QTest::newRow("a fraction of a megahertz stays") << record(1'500'000) << Frequencies{1.5};
}

void TestFrequencyTables::parses()
{
    QFETCH(QByteArray, table);
    QTEST(listOf(IORegistryReader::parseFrequencies(bytesOf(table))), "expected");
}

void TestFrequencyTables::scales_data()
{
    QTest::addColumn<QByteArray>("table");
    QTest::addColumn<Frequencies>("expected");

    QTest::newRow("empty") << QByteArray() << Frequencies{};
    QTest::newRow("shorter than a record") << record(1'020'000).left(7) << Frequencies{};
    QTest::newRow("a table in hertz")
        << record(600'000'000) + record(2'064'000'000) << Frequencies{600, 2064};
    QTest::newRow("a table in kilohertz")
        << QByteArray::fromHex("60900F00 16030000 606C1500 20030000") << Frequencies{1020, 1404};
    QTest::newRow("a clock that hertz in 32 bits cannot hold")
        << record(1'260'000) + record(4'512'000) << Frequencies{1260, 4512};
    QTest::newRow("the unit is the table's: one large entry makes it hertz")
        << record(1'260'000) + record(338'000'000) << Frequencies{1.26, 338};
    QTest::newRow("exactly 100 MHz is hertz") << record(100'000'000) << Frequencies{100};
    QTest::newRow("just below 100 MHz is kilohertz")
        << record(99'999'999) << Frequencies{99'999.999};
    QTest::newRow("zeros are dropped in kilohertz too")
        << record(0) + record(972'000) << Frequencies{972};
    QTest::newRow("nothing but zeros") << record(0) << Frequencies{};
}

void TestFrequencyTables::scales()
{
    QFETCH(QByteArray, table);
    QTEST(listOf(IORegistryReader::parseScaledFrequencies(bytesOf(table))), "expected");
}

void TestFrequencyTables::parsesClusters_data()
{
    QTest::addColumn<QByteArray>("clusters");
    QTest::addColumn<QList<quint32>>("expected");
    using Numbers = QList<quint32>;
    QTest::newRow("empty") << QByteArray() << Numbers{};
    QTest::newRow("a number and a tier each") << record(22, 0) + record(5, 1) << Numbers{22, 5};
    QTest::newRow("the highest number") << record(255) << Numbers{255};
    QTest::newRow("a number too high") << record(22) + record(256) << Numbers{};
    QTest::newRow("part of a record") << record(22) + record(5).left(4) << Numbers{};
}

void TestFrequencyTables::parsesClusters()
{
    QFETCH(QByteArray, clusters);
    const auto numbers = IORegistryReader::parseClusterTables(bytesOf(clusters));
    QTEST(QList<quint32>(numbers.begin(), numbers.end()), "expected");
}

void TestFrequencyTables::choosesTheSlowerTable_data()
{
    QTest::addColumn<QList<Frequencies>>("tables");
    QTest::addColumn<Frequencies>("expected");
    const Frequencies fast{1308, 4608};
    const Frequencies slow{1344, 4380};
    QTest::newRow("the other than the faster") << QList{fast, slow} << slow;
    QTest::newRow("the slowest of several") << QList{Frequencies{900, 4500}, slow, fast} << slow;
    QTest::newRow("none but the faster") << QList{fast, fast} << Frequencies{};
    QTest::newRow("one of them is missing") << QList{slow, Frequencies{}} << Frequencies{};
    QTest::newRow("none at all") << QList<Frequencies>{} << Frequencies{};
}

void TestFrequencyTables::choosesTheSlowerTable()
{
    QFETCH(QList<Frequencies>, tables);
    std::vector<std::vector<double>> lists;
    for (const Frequencies &table : tables)
        lists.emplace_back(table.begin(), table.end());
    QTEST(listOf(IORegistryReader::slowerTable(lists, {1308, 4608})), "expected");
}

QTEST_APPLESS_MAIN(TestFrequencyTables)
#include "tst_FrequencyTables.moc"
