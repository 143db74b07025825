#include "cpu/CPUFrequencies.h"

#include <QTest>

using namespace corvane;

using Ranges = std::vector<CPUFrequencyRange>;
using States = std::vector<std::uint64_t>;
using Times = std::vector<CPUFrequencyTime>;

Q_DECLARE_METATYPE(Ranges)
Q_DECLARE_METATYPE(States)
Q_DECLARE_METATYPE(Times)
Q_DECLARE_METATYPE(std::optional<std::uint64_t>)

class TestCPUFrequencies : public QObject {
    Q_OBJECT

private slots:
    void makesStates_data();
    void makesStates();
    void readsCPUInfo_data();
    void readsCPUInfo();
    void readsTimes_data();
    void readsTimes();
    void findsTheNearestState_data();
    void findsTheNearestState();
};

void TestCPUFrequencies::makesStates_data()
{
    QTest::addColumn<Ranges>("policies");
    QTest::addColumn<States>("states");
    QTest::newRow("no policy") << Ranges{} << States{};
    QTest::newRow("a table from the greatest down, with a blank at its end")
        << Ranges{{.available = "3600000 3400000 2200000 \n"}} << States{2200000, 3400000, 3600000};
    QTest::newRow("boost frequencies belong to the table")
        << Ranges{{.available = "2000000 1000000 \n", .boost = "3000000 \n"}}
        << States{1000000, 2000000, 3000000};
    QTest::newRow("a table comes before the range")
        << Ranges{{.available = "1000000 \n", .minimum = "400000\n", .maximum = "900000\n"}}
        << States{1000000};
    QTest::newRow("equal policies give each frequency once")
        << Ranges{{.available = "1000 2000\n"}, {.available = "2000 1000\n"}} << States{1000, 2000};
    QTest::newRow("policies of one cluster with different tables")
        << Ranges{{.available = "1000 3000\n"}, {.available = "1000 2000\n"}}
        << States{1000, 2000, 3000};
    QTest::newRow("garbage in a table is passed over")
        << Ranges{{.available = "1000 x -5 0 99999999999 2000\n"}} << States{1000, 2000};
    QTest::newRow("steps of 100 MHz") << Ranges{{.minimum = "400000\n", .maximum = "700000\n"}}
                                      << States{400000, 500000, 600000, 700000};
    QTest::newRow("the greatest is not a whole number of steps away")
        << Ranges{{.minimum = "400000\n", .maximum = "635000\n"}}
        << States{400000, 500000, 600000, 635000};
    QTest::newRow("a range of one frequency")
        << Ranges{{.minimum = "800000\n", .maximum = "800000\n"}} << States{800000};
    QTest::newRow("cores that reach further widen the range")
        << Ranges{{.minimum = "400000\n", .maximum = "500000\n"},
                  {.minimum = "400000\n", .maximum = "600000\n"}}
        << States{400000, 500000, 600000};
    QTest::newRow("a range upside down")
        << Ranges{{.minimum = "2000\n", .maximum = "1000\n"}} << States{};
    QTest::newRow("half a range") << Ranges{{.maximum = "1000\n"}} << States{};
}

void TestCPUFrequencies::makesStates()
{
    QFETCH(Ranges, policies);
    QTEST(cpuFrequencyStates(policies), "states");
}

void TestCPUFrequencies::readsCPUInfo_data()
{
    using Expected = std::optional<std::uint64_t>;
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("cpu");
    QTest::addColumn<Expected>("kHz");
    const QByteArray two = "processor\t: 0\ncpu MHz\t\t: 3599.998\n\n"
                           "processor\t: 1\ncpu MHz\t\t: 2200.000\n\n";
    QTest::newRow("the first CPU") << two << 0 << Expected(3599998);
    QTest::newRow("the second CPU") << two << 1 << Expected(2200000);
    QTest::newRow("a CPU that is not in it") << two << 2 << Expected();
    QTest::newRow("a kernel that does not write it")
        << QByteArray("processor\t: 0\nBogoMIPS\t: 48.00\n") << 0 << Expected();
    QTest::newRow("no line end") << QByteArray("processor: 0\ncpu MHz: 100") << 0
                                 << Expected(100000);
    QTest::newRow("not a number") << QByteArray("processor: 0\ncpu MHz: unknown") << 0
                                  << Expected();
    QTest::newRow("beyond any CPU") << QByteArray("processor: 0\ncpu MHz: 1e30") << 0 << Expected();
    QTest::newRow("negative") << QByteArray("processor: 0\ncpu MHz: -1") << 0 << Expected();
}

void TestCPUFrequencies::readsCPUInfo()
{
    QFETCH(QByteArray, text);
    QFETCH(int, cpu);
    QTEST(cpuInfoKHz(text.toStdString(), cpu), "kHz");
}

void TestCPUFrequencies::readsTimes_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<Times>("times");
    QTest::newRow("two states") << QByteArray("3600000 2089\n3400000 136\n")
                                << Times{{3600000, 2089}, {3400000, 136}};
    QTest::newRow("nothing") << QByteArray() << Times{};
    QTest::newRow("cut in the last line")
        << QByteArray("3600000 2089\n3400000") << Times{{3600000, 2089}};
    QTest::newRow("garbage between")
        << QByteArray("x y\n100 -1\n200 7 8\n300 9\n") << Times{{300, 9}};
}

void TestCPUFrequencies::readsTimes()
{
    QFETCH(QByteArray, text);
    QTEST(parseTimeInState(text.toStdString()), "times");
}

void TestCPUFrequencies::findsTheNearestState_data()
{
    QTest::addColumn<int>("kHz");
    QTest::addColumn<int>("place");
    QTest::newRow("below the least") << 100 << 0;
    QTest::newRow("the least") << 1000 << 0;
    QTest::newRow("nearer to the one below") << 1400 << 0;
    QTest::newRow("in the middle") << 1500 << 0;
    QTest::newRow("nearer to the one above") << 1501 << 1;
    QTest::newRow("the greatest") << 3000 << 2;
    QTest::newRow("beyond the greatest") << 3700 << 2;
}

void TestCPUFrequencies::findsTheNearestState()
{
    QFETCH(int, kHz);
    QFETCH(int, place);
    const States states = {1000, 2000, 3000};
    QCOMPARE(nearestFrequencyState(states, static_cast<std::uint64_t>(kHz)),
             static_cast<std::size_t>(place));
}

QTEST_GUILESS_MAIN(TestCPUFrequencies)
#include "tst_CPUFrequencies.moc"
