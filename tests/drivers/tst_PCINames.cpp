#include "drivers/PCINames.h"

#include <QTest>

using namespace corvane;

namespace {

constexpr std::string_view list = "# Comment\n"
                                  "\n"
                                  "1002  Advanced Micro Devices, Inc. [AMD/ATI]\n"
                                  "\t73df  Navi 22 [Radeon RX 6700]\n"
                                  "\t\t1002 73ff  Another board\n"
                                  "\t73ff  Navi 23\n"
                                  "\t7400\n"
                                  "8086  Intel Corporation\n"
                                  "\t73df  Something else\n"
                                  "\te20b  Battlemage G21 [Arc B580]";

} // namespace

class TestPCINames : public QObject {
    Q_OBJECT

private slots:
    void findsADevice_data();
    void findsADevice();
    void makesANameToShow_data();
    void makesANameToShow();
    void parsesNumbers_data();
    void parsesNumbers();
};

void TestPCINames::findsADevice_data()
{
    QTest::addColumn<int>("vendor");
    QTest::addColumn<int>("device");
    QTest::addColumn<QString>("name");
    QTest::newRow("of the first maker") << 0x1002 << 0x73df << "Navi 22 [Radeon RX 6700]";
    QTest::newRow("not a board of another device") << 0x1002 << 0x73ff << "Navi 23";
    QTest::newRow("the same number of another maker") << 0x8086 << 0x73df << "Something else";
    QTest::newRow("in the last line") << 0x8086 << 0xe20b << "Battlemage G21 [Arc B580]";
    QTest::newRow("without a name") << 0x1002 << 0x7400 << "";
    QTest::newRow("of another maker") << 0x1002 << 0xe20b << "";
    QTest::newRow("no such maker") << 0x10de << 0x73df << "";
}

void TestPCINames::findsADevice()
{
    QFETCH(int, vendor);
    QFETCH(int, device);
    const auto name = pciDeviceName(list, std::uint16_t(vendor), std::uint16_t(device));
    QTEST(QString::fromStdString(name.value_or("")), "name");
}

void TestPCINames::makesANameToShow_data()
{
    QTest::addColumn<QByteArray>("listed");
    QTest::addColumn<QString>("name");
    const auto row = [](const char *title, const QByteArray &listed, const char *name) {
        QTest::newRow(title) << listed << QString::fromUtf8(name);
    };
    row("what stands in brackets", "Navi 22 [Radeon RX 6700]", "AMD Radeon RX 6700");
    row("without brackets", "Navi 23", "AMD Navi 23");
    row("with its maker", "x [AMD Radeon Pro]", "AMD Radeon Pro");
    row("shortened at an alternative",
        "Navi 21 [Radeon RX 6800/6800 XT / 6900 XT / 6950 XT Super Extended]",
        "AMD Radeon RX 6800/6800 XT / 6900 XT / 6950 XT…");
    row("empty brackets", "Navi []", "");
    row("blank", "  ", "");
    row("control characters", "Navi\x1b[2J", "");
    row("not UTF-8", "Navi \xff", "");
}

void TestPCINames::makesANameToShow()
{
    QFETCH(QByteArray, listed);
    QTEST(QString::fromStdString(gpuProductName("AMD", listed.toStdString())), "name");
}

void TestPCINames::parsesNumbers_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("number");
    QTest::newRow("as the kernel writes it") << QByteArray("0x10de\n") << 0x10de;
    QTest::newRow("too long") << QByteArray("0x10de0\n") << -1;
    QTest::newRow("too short") << QByteArray("0x10d\n") << -1;
    QTest::newRow("decimal") << QByteArray("4318\n") << -1;
    QTest::newRow("garbage") << QByteArray("0xzzzz\n") << -1;
    QTest::newRow("empty") << QByteArray() << -1;
}

void TestPCINames::parsesNumbers()
{
    QFETCH(QByteArray, text);
    const auto number = parsePCINumber(text.toStdString());
    QTEST(number ? int(*number) : -1, "number");
}

QTEST_GUILESS_MAIN(TestPCINames)
#include "tst_PCINames.moc"
