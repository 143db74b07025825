#include "chip/ChipIdentity.h"
#include "simulated_mac/SimulatedMac.h"

#include <QTest>

using namespace corvane;
using namespace corvane::simulated;
using namespace Qt::StringLiterals;

class TestChipNameOnMac : public QObject {
    Q_OBJECT

private slots:
    void readsTheBrand_data();
    void readsTheBrand();
    void standsInWhenTheNameCannotBeRead();
    void survivesGarbage();
};

void TestChipNameOnMac::readsTheBrand_data()
{
    QTest::addColumn<QByteArray>("brand");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<double>("neuralEngineCeiling");
    QTest::newRow("a base chip") << QByteArray("Apple M1") << u"Apple M1"_s << 8.0;
    QTest::newRow("a Max") << QByteArray("Apple M4 Max") << u"Apple M4 Max"_s << 8.0;
    QTest::newRow("an Ultra") << QByteArray("Apple M2 Ultra") << u"Apple M2 Ultra"_s << 16.0;
    QTest::newRow("white space around") << QByteArray(" Apple M3 \n") << u"Apple M3"_s << 8.0;
    QTest::newRow("no name") << QByteArray("") << u"Apple Silicon"_s << 8.0;
    QTest::newRow("blanks only") << QByteArray("  ") << u"Apple Silicon"_s << 8.0;
}

void TestChipNameOnMac::readsTheBrand()
{
    QFETCH(QByteArray, brand);
    Machine machine = baseM1();
    machine.brand = brand.toStdString();
    mac().boot(machine);
    QCOMPARE(readChipName(), std::optional(brand.toStdString()));
    QTEST(SystemInfo::shownChipName(readChipName()), "shown");
    QTEST(ChipInfo::detect(SystemInfo::shownChipName(readChipName())).aneMaxW,
          "neuralEngineCeiling");
}

void TestChipNameOnMac::standsInWhenTheNameCannotBeRead()
{
    mac().boot(baseM1());
    for (const int use : {1, 2}) { // For the size and for the bytes.
        faults().failOnce(Call::sysctlbyname, Way::error, use);
        QVERIFY(!readChipName());
    }
    // A name that grew between the two calls does not fit.
    faults().failOnce(Call::sysctlbyname, Way::shortAnswer);
    QVERIFY(!readChipName());
    faults().failOnce(Call::sysctlbyname, Way::shortAnswer, 2);
    QCOMPARE(readChipName(), std::optional(std::string("Appl")));
    QCOMPARE(SystemInfo::shownChipName(std::nullopt), u"Apple Silicon"_s);
    mac().machine.brand = std::string(5000, 'M');
    QVERIFY(!readChipName());
}

void TestChipNameOnMac::survivesGarbage()
{
    mac().boot(baseM1());
    faults().failAlways(Call::sysctlbyname, Way::garbage);
    for (int round = 0; round < 100; ++round) {
        const auto name = readChipName();
        QVERIFY(name && name->size() <= 9); // What was there: eight letters and a NUL.
    }
}

QTEST_APPLESS_MAIN(TestChipNameOnMac)
#include "tst_ChipName_mac.moc"
