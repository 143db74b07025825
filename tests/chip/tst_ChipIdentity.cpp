#include "chip/ChipIdentity.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestChipIdentity : public QObject {
    Q_OBJECT

private slots:
    void detects_data();
    void detects();
    void showsNames_data();
    void showsNames();
    void isDetectedOnce();
};

void TestChipIdentity::detects_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<double>("cpuMaxW");
    QTest::addColumn<double>("gpuMaxW");
    QTest::addColumn<double>("aneMaxW");

    const auto row = [](const QString &name, double cpuMaxW, double gpuMaxW, double aneMaxW) {
        QTest::newRow(qUtf8Printable(u'"' + name + u'"')) << name << cpuMaxW << gpuMaxW << aneMaxW;
    };
    row(u"Apple M5 Ultra"_s, 60, 130, 20);
    row(u"Apple M5 Max"_s, 36, 65, 10);
    row(u"Apple M5 Pro"_s, 30, 35, 10);
    row(u"Apple M5"_s, 25, 25, 10);
    row(u"Apple M4 Max"_s, 36, 50, 8);
    row(u"Apple M4 Pro"_s, 30, 28, 8);
    row(u"Apple M4"_s, 25, 20, 8);
    row(u"Apple M3 Ultra"_s, 60, 120, 16);
    row(u"Apple M3 Max"_s, 36, 56, 8);
    row(u"Apple M3 Pro"_s, 30, 30, 8);
    row(u"Apple M3"_s, 24, 18, 8);
    row(u"Apple M2 Ultra"_s, 60, 120, 16);
    row(u"Apple M2 Max"_s, 36, 60, 8);
    row(u"Apple M2 Pro"_s, 30, 30, 8);
    row(u"Apple M2"_s, 25, 15, 8);
    row(u"Apple M1 Ultra"_s, 60, 120, 8);
    row(u"Apple M1 Max"_s, 30, 60, 8);
    row(u"Apple M1 Pro"_s, 30, 30, 8);
    row(u"Apple M1"_s, 20, 14, 8);

    // A part of the name is enough, with its case.
    row(u"Apple M4 Ultra"_s, 25, 20, 8);
    row(u"Apple M10"_s, 20, 14, 8);
    row(u"M3 Max (virtual)"_s, 36, 56, 8);
    row(u"M1 Max beside an M2"_s, 25, 15, 8);
    row(u"apple m1"_s, 30, 30, 8);
    row(u"Apple M3 max"_s, 24, 18, 8);

    // Chips that are in no row.
    row(u"Intel(R) Core(TM) i7-1185G7 @ 3.00GHz"_s, 30, 30, 8);
    row(u"AMD Ryzen 9 7950X 16-Core Processor"_s, 30, 30, 8);
    row(u"Apple Silicon"_s, 30, 30, 8);
    row(u"Linux computer"_s, 30, 30, 8);
    row(u""_s, 30, 30, 8);
}

void TestChipIdentity::detects()
{
    QFETCH(QString, name);
    const ChipInfo chip = ChipInfo::detect(name);
    QCOMPARE(chip.name, name);
    QTEST(chip.cpuMaxW, "cpuMaxW");
    QTEST(chip.gpuMaxW, "gpuMaxW");
    QTEST(chip.aneMaxW, "aneMaxW");
}

void TestChipIdentity::showsNames_data()
{
    using Name = std::optional<std::string>;
    QTest::addColumn<Name>("name");
    QTest::addColumn<QString>("onMac");
    QTest::addColumn<QString>("onLinux");

    const auto named = [](const char *row, const std::string &name, const QString &shown) {
        QTest::newRow(row) << Name(name) << shown << shown;
    };
    named("as it is", "Apple M2 Ultra", u"Apple M2 Ultra"_s);
    named("white space around is trimmed", " \tApple M1 \r\n", u"Apple M1"_s);
    named("white space within stays", "Intel(R) Xeon(R) CPU   E5", u"Intel(R) Xeon(R) CPU   E5"_s);
    named("characters beyond ASCII", "Chip \xC2\xAE", u"Chip \u00AE"_s);
    named("bytes that are not UTF-8", "M1 \xFF", u"M1 \uFFFD"_s);

    const auto unnamed = [](const char *row, const Name &name) {
        QTest::newRow(row) << name << u"Apple Silicon"_s << u"Linux computer"_s;
    };
    unnamed("nothing", {});
    unnamed("an empty name", "");
    unnamed("white space alone", " \n\t ");
}

void TestChipIdentity::showsNames()
{
    QFETCH(std::optional<std::string>, name);
    QTEST(SystemInfo::shownChipName(name, HostSystem::mac), "onMac");
    QTEST(SystemInfo::shownChipName(name, HostSystem::linuxDesktop), "onLinux");
}

void TestChipIdentity::isDetectedOnce()
{
    QVERIFY(!SystemInfo::chipName().isEmpty());
    QCOMPARE(SystemInfo::chipName(), SystemInfo::shownChipName(readChipName()));
    QCOMPARE(&SystemInfo::chipName(), &SystemInfo::chipName());
    QCOMPARE(ChipInfo::current().name, SystemInfo::chipName());
    QCOMPARE(&ChipInfo::current(), &ChipInfo::current());
}

QTEST_APPLESS_MAIN(TestChipIdentity)
#include "tst_ChipIdentity.moc"
