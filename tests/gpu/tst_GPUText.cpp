#include "gpu/GPUText.h"

#include <QTest>

using namespace corvane;

using Number = std::optional<double>;

Q_DECLARE_METATYPE(Number)

class TestGPUText : public QObject {
    Q_OBJECT

private slots:
    void parsesMemory_data();
    void parsesMemory();
    void knowsAddresses_data();
    void knowsAddresses();
    void writesAddressesAsTheKernelDoes_data();
    void writesAddressesAsTheKernelDoes();
    void readsBusyShares_data();
    void readsBusyShares();
    void readsIdleTimes_data();
    void readsIdleTimes();
    void findsThePresentLevel_data();
    void findsThePresentLevel();
    void readsClocks_data();
    void readsClocks();
    void namesClockStates_data();
    void namesClockStates();
    void namesPerformanceStates();
    void readsPower_data();
    void readsPower();
};

void TestGPUText::knowsAddresses_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("isAddress");
    QTest::newRow("a device") << QByteArray("0000:01:00.0") << true;
    QTest::newRow("one of a large machine") << QByteArray("10000:e1:00.0") << true;
    QTest::newRow("a file of the driver's folder") << QByteArray("new_id") << false;
    QTest::newRow("no domain") << QByteArray("01:00.0") << false;
    QTest::newRow("no function") << QByteArray("0000:01:00") << false;
    QTest::newRow("a path") << QByteArray("0000:01:00.0/power") << false;
    QTest::newRow("nothing") << QByteArray() << false;
}

void TestGPUText::knowsAddresses()
{
    QFETCH(QByteArray, name);
    QTEST(isPCIAddress(name.toStdString()), "isAddress");
}

void TestGPUText::writesAddressesAsTheKernelDoes_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("address");
    const auto row = [](const char *name, const char *text, const char *address) {
        QTest::newRow(name) << QByteArray(text) << QByteArray(address);
    };
    row("the kernel's", "0000:01:00.0", "0000:01:00.0");
    row("capital letters", "0000:C1:00.0", "0000:c1:00.0");
    row("eight digits of the domain", "00000000:0A:00.0", "0000:0a:00.0");
    row("eight digits of a large domain", "00010000:E1:00.0", "10000:e1:00.0");
    row("no address", "nvidia 0", "nvidia 0");
    row("nothing", "", "");
}

void TestGPUText::writesAddressesAsTheKernelDoes()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, address);
    QCOMPARE(kernelPCIAddress(text.toStdString()), address.toStdString());
}

void TestGPUText::readsBusyShares_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<Number>("share");
    QTest::newRow("a percentage") << QByteArray("37\n") << Number(0.37);
    QTest::newRow("idle is a number too") << QByteArray("0\n") << Number(0);
    QTest::newRow("all of it") << QByteArray("100\n") << Number(1);
    QTest::newRow("more than all") << QByteArray("101\n") << Number();
    QTest::newRow("nothing") << QByteArray() << Number();
}

void TestGPUText::readsBusyShares()
{
    QFETCH(QByteArray, text);
    QTEST(parseBusyPercent(text.toStdString()), "share");
}

void TestGPUText::readsIdleTimes_data()
{
    using Time = std::optional<std::uint64_t>;
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<Time>("milliseconds");
    QTest::newRow("milliseconds") << QByteArray("5081234\n") << Time(5'081'234);
    QTest::newRow("it never moved") << QByteArray("0\n") << Time();
}

void TestGPUText::readsIdleTimes()
{
    QFETCH(QByteArray, text);
    QTEST(parseIdleTime(text.toStdString()), "milliseconds");
}

void TestGPUText::findsThePresentLevel_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<Number>("megahertz");
    QTest::newRow("three pseudo levels")
        << QByteArray("0: 500Mhz \n1: 1130Mhz *\n2: 2700Mhz \n") << Number(1130);
    QTest::newRow("the first") << QByteArray("0: 300Mhz *\n1: 1130Mhz\n") << Number(300);
    QTest::newRow("the last, without a line end")
        << QByteArray("0: 300Mhz\n1: 1130Mhz *") << Number(1130);
    QTest::newRow("the deep sleep level") << QByteArray("S: 19Mhz *\n0: 500Mhz \n") << Number(19);
    QTest::newRow("no level is marked") << QByteArray("0: 500Mhz \n1: 1130Mhz \n") << Number();
    QTest::newRow("a lone line feed") << QByteArray("\n") << Number();
    QTest::newRow("nothing") << QByteArray() << Number();
    QTest::newRow("no unit") << QByteArray("0: 500 *\n") << Number();
    QTest::newRow("no number") << QByteArray("0: Mhz *\n") << Number();
    QTest::newRow("a mark without a clock") << QByteArray("0: *\n") << Number();
    QTest::newRow("beyond any chip") << QByteArray("0: 99999999999999999999Mhz *\n") << Number();
}

void TestGPUText::findsThePresentLevel()
{
    QFETCH(QByteArray, text);
    QTEST(presentLevelMHz(text.toStdString()), "megahertz");
}

void TestGPUText::readsClocks_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<Number>("megahertz");
    QTest::newRow("a clock") << QByteArray("850\n") << Number(850);
    QTest::newRow("at rest") << QByteArray("0\n") << Number();
    QTest::newRow("beyond any chip") << QByteArray("20001\n") << Number();
}

void TestGPUText::readsClocks()
{
    QFETCH(QByteArray, text);
    QTEST(parseClockMHz(text.toStdString()), "megahertz");
}

void TestGPUText::namesClockStates_data()
{
    QTest::addColumn<Number>("megahertz");
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("rounded down") << Number(1130) << QByteArray("1100 MHz");
    QTest::newRow("rounded up") << Number(1150) << QByteArray("1200 MHz");
    QTest::newRow("never to nothing") << Number(19) << QByteArray("100 MHz");
    QTest::newRow("not known") << Number() << QByteArray();
    QTest::newRow("standing") << Number(0) << QByteArray();
}

void TestGPUText::namesClockStates()
{
    QFETCH(Number, megahertz);
    QFETCH(QByteArray, name);
    QCOMPARE(QByteArray::fromStdString(clockStateName(megahertz)), name);
}

void TestGPUText::namesPerformanceStates()
{
    QCOMPARE(performanceStateName(0), std::string("P0"));
    QCOMPARE(performanceStateName(15), std::string("P15"));
    QCOMPARE(performanceStateName(32), std::string()); // The library's "unknown".
    QCOMPARE(performanceStateName(-1), std::string());
    QCOMPARE(performanceStateName({}), std::string());
}

void TestGPUText::readsPower_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<Number>("watts");
    QTest::newRow("microwatts") << QByteArray("18123000\n") << Number(18.123);
    QTest::newRow("none is a number too") << QByteArray("0\n") << Number(0);
    QTest::newRow("more than any card takes") << QByteArray("5000000001\n") << Number();
}

void TestGPUText::readsPower()
{
    QFETCH(QByteArray, text);
    QTEST(parseMicrowatts(text.toStdString()), "watts");
}

void TestGPUText::parsesMemory_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<qint64>("bytes");
    QTest::newRow("decimal") << QByteArray("12868124672\n") << 12'868'124'672ll;
    QTest::newRow("hexadecimal") << QByteArray("0x00000002fa800000\n") << 12'792'627'200ll;
    QTest::newRow("zero") << QByteArray("0\n") << 0ll;
    QTest::newRow("more than any machine has") << QByteArray("1125899906842625\n") << -1ll;
    QTest::newRow("beyond 64 bits") << QByteArray("18446744073709551616\n") << -1ll;
    QTest::newRow("beyond 64 bits, hexadecimal") << QByteArray("0x10000000000000000\n") << -1ll;
    QTest::newRow("no digits") << QByteArray("0x\n") << -1ll;
    QTest::newRow("negative") << QByteArray("-5\n") << -1ll;
    QTest::newRow("two numbers") << QByteArray("1 2\n") << -1ll;
    QTest::newRow("empty") << QByteArray() << -1ll;
}

void TestGPUText::parsesMemory()
{
    QFETCH(QByteArray, text);
    const auto bytes = parseMemoryBytes(text.toStdString());
    QTEST(bytes ? qint64(*bytes) : -1, "bytes");
}

QTEST_GUILESS_MAIN(TestGPUText)
#include "tst_GPUText.moc"
