#include "app/AboutTexts.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestAboutTexts : public QObject {
    Q_OBJECT

private slots:
    void containTheVersionOfTheBundle_data();
    void containTheVersionOfTheBundle();
    void nameWhatIsReadOnEachSystem();
    void thisProgramHasAVersion();
};

void TestAboutTexts::containTheVersionOfTheBundle_data()
{
    QTest::addColumn<std::optional<QString>>("bundleVersion");
    QTest::addColumn<std::optional<QString>>("bundleBuild");
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("build");
    const std::optional<QString> none;
    QTest::newRow("both keys") << std::optional(u"2.3.4"_s) << std::optional(u"56"_s) << u"2.3.4"_s
                               << u"56"_s;
    QTest::newRow("no keys") << none << none << u"0.1.0"_s << u"1"_s;
    QTest::newRow("no version") << none << std::optional(u"7"_s) << u"0.1.0"_s << u"7"_s;
    QTest::newRow("no build") << std::optional(u"2.0"_s) << none << u"2.0"_s << u"1"_s;
}

void TestAboutTexts::containTheVersionOfTheBundle()
{
    QFETCH(std::optional<QString>, bundleVersion);
    QFETCH(std::optional<QString>, bundleBuild);
    const AboutTexts texts = AboutTexts::current({bundleVersion, bundleBuild});
    QTEST(texts.version, "version");
    QTEST(texts.build, "build");
    QCOMPARE(texts.name, u"Corvane"_s);
    QCOMPARE(texts.copyright, u"© 2026 The Corvane contributors"_s);
}

void TestAboutTexts::nameWhatIsReadOnEachSystem()
{
    QCOMPARE(AboutTexts::current({}, HostSystem::mac).credits,
             u"Apple Silicon system monitor.\n"
             "Reads IOReport, host_statistics64, libproc.\n"
             "\n"
             "Made for people who run AI workloads locally."_s);
    QCOMPARE(AboutTexts::current({}, HostSystem::linuxDesktop).credits,
             u"Linux system monitor.\n"
             "Reads procfs, cpufreq, hwmon, powercap, DRM.\n"
             "\n"
             "Made for people who run AI workloads locally."_s);
}

void TestAboutTexts::thisProgramHasAVersion()
{
    QCOMPARE(bundleVersion().version, QStringLiteral(CORVANE_VERSION));
    QCOMPARE(bundleVersion().build, QStringLiteral(CORVANE_BUILD));
}

QTEST_MAIN(TestAboutTexts)
#include "tst_AboutTexts.moc"
