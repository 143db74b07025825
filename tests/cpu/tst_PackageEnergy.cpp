#include "cpu/PackageEnergy.h"

#include <QTest>

using namespace corvane;

using Joules = std::optional<double>;

Q_DECLARE_METATYPE(Joules)

class TestPackageEnergy : public QObject {
    Q_OBJECT

private slots:
    void takesDifferences_data();
    void takesDifferences();
    void recognizesPackages_data();
    void recognizesPackages();
};

void TestPackageEnergy::takesDifferences_data()
{
    QTest::addColumn<quint64>("before");
    QTest::addColumn<quint64>("now");
    QTest::addColumn<quint64>("range");
    QTest::addColumn<double>("seconds");
    QTest::addColumn<Joules>("joules");
    const quint64 range = 65'532'610'987;
    const quint64 nearEnd = range - 10'000'000;
    QTest::newRow("a second at 12 W")
        << quint64(5'000'000) << quint64(17'000'000) << range << 1.0 << Joules(12);
    QTest::newRow("no time, no energy") << quint64(5) << quint64(5) << range << 0.0 << Joules(0);
    QTest::newRow("the counter wrapped")
        << nearEnd << quint64(20'000'000) << range << 1.0 << Joules(30);
    QTest::newRow("it wrapped and the range is unknown")
        << nearEnd << quint64(20'000'000) << quint64(0) << 1.0 << Joules();
    QTest::newRow("it restarted in sleep")
        << quint64(30'000'000'000) << quint64(4'000'000) << range << 1.0 << Joules();
    QTest::newRow("after a long gap it may have wrapped twice")
        << nearEnd << quint64(20'000'000) << range << 3.1 << Joules();
    QTest::newRow("three ticks are no long gap")
        << nearEnd << quint64(20'000'000) << range << 3.0 << Joules(30);
    QTest::newRow("forwards over a long gap")
        << quint64(0) << quint64(60'000'000) << range << 60.0 << Joules(60);
}

void TestPackageEnergy::takesDifferences()
{
    QFETCH(quint64, before);
    QFETCH(quint64, now);
    QFETCH(quint64, range);
    QFETCH(double, seconds);
    QTEST(packageJoules({"zone", before, range}, {"zone", now, range}, seconds), "joules");
}

void TestPackageEnergy::recognizesPackages_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("package");
    const auto row = [](const char *zone, const char *name, bool package) {
        return std::tuple(QByteArray(zone), QByteArray(name), package);
    };
    const auto add = [](const char *title, const auto &values) {
        QTest::newRow(title) << std::get<0>(values) << std::get<1>(values) << std::get<2>(values);
    };
    add("a package", row("intel-rapl:0", "package-0\n", true));
    add("a die of a package", row("intel-rapl:2", "package-0-die-1\n", true));
    add("the cores inside", row("intel-rapl:0:0", "core\n", false));
    add("a child that is called a package", row("intel-rapl:0:0", "package-0\n", false));
    add("the whole platform", row("intel-rapl:1", "psys\n", false));
    add("the same package through another register",
        row("intel-rapl-mmio:0", "package-0\n", false));
    add("the control type itself", row("intel-rapl", "package-0\n", false));
    add("another control type", row("dtpm:0", "package-0\n", false));
}

void TestPackageEnergy::recognizesPackages()
{
    QFETCH(QByteArray, zone);
    QFETCH(QByteArray, name);
    QTEST(isPackageZone(zone.toStdString(), name.toStdString()), "package");
}

QTEST_GUILESS_MAIN(TestPackageEnergy)
#include "tst_PackageEnergy.moc"
