#include "cards/InfoTexts.h"
#include "controls/InfoPopover.h"
#include "ui/Markdown.h"

#include <QCryptographicHash>
#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestInfoTexts : public QObject {
    Q_OBJECT

private slots:
    void hasATitleForEachSystem_data();
    void hasATitleForEachSystem();
    void isWordForWordOnTheMac_data();
    void isWordForWordOnTheMac();
    void hasParagraphsOnLinux();
    void closesEveryMark();
    void namesItsSourcesOnLinux_data();
    void namesItsSourcesOnLinux();
    void saysWhatHoldsForTheMachine_data();
    void saysWhatHoldsForTheMachine();
    void namesNoServiceOfTheOtherSystem();
    void takesThisSystemByDefault();
    void everyTextFitsTheSmallestWindow();
};

void TestInfoTexts::hasATitleForEachSystem_data()
{
    QTest::addColumn<InfoTopic>("topic");
    QTest::addColumn<QString>("mac");
    QTest::addColumn<QString>("linux");
    const QString cpu = u"CPU — Utilization"_s;
    const QString gpu = u"GPU — Utilization"_s;
    QTest::newRow("memory") << InfoTopic::memory << u"Unified Memory"_s << u"Memory"_s;
    QTest::newRow("power") << InfoTopic::power << u"Package Power"_s << u"Power"_s;
    QTest::newRow("CPU") << InfoTopic::cpu << cpu << cpu;
    QTest::newRow("GPU") << InfoTopic::gpu << gpu << gpu;
    QTest::newRow("Neural Engine or NPU")
        << InfoTopic::ane << u"Neural Engine — Power-derived load"_s << u"NPU"_s;
    QTest::newRow("workloads") << InfoTopic::workloads << u"AI Workloads"_s << u"AI Workloads"_s;
    QTest::newRow("processes") << InfoTopic::processes << u"Top Processes"_s << u"Top Processes"_s;
}

void TestInfoTexts::hasATitleForEachSystem()
{
    QFETCH(InfoTopic, topic);
    QTEST(infoText(topic, HostSystem::mac).title, "mac");
    QTEST(infoText(topic, HostSystem::linuxDesktop).title, "linux");
}

void TestInfoTexts::isWordForWordOnTheMac_data()
{
    QTest::addColumn<InfoTopic>("topic");
    QTest::addColumn<QByteArray>("digest");
    QTest::newRow("memory") << InfoTopic::memory << QByteArray("24a9dfd2e6e5f3b6");
    QTest::newRow("power") << InfoTopic::power << QByteArray("f7b88f2cc055901f");
    QTest::newRow("cpu") << InfoTopic::cpu << QByteArray("bdc435bf5e73cb9b");
    QTest::newRow("gpu") << InfoTopic::gpu << QByteArray("f9e9bbcac8053bfe");
    QTest::newRow("ane") << InfoTopic::ane << QByteArray("6243ad155272b388");
    QTest::newRow("workloads") << InfoTopic::workloads << QByteArray("e9b0df7c5a09bcc0");
    QTest::newRow("processes") << InfoTopic::processes << QByteArray("d3bd1173d148e1a9");
}

void TestInfoTexts::isWordForWordOnTheMac()
{
    QFETCH(InfoTopic, topic);
    const QByteArray text = infoText(topic, HostSystem::mac).text.toUtf8();
    QTEST(QCryptographicHash::hash(text, QCryptographicHash::Sha256).toHex().first(16), "digest");
}

void TestInfoTexts::hasParagraphsOnLinux()
{
    for (const InfoTopic topic : allInfoTopics) {
        const QString text = infoText(topic, HostSystem::linuxDesktop).text;
        QVERIFY2(text.split(u"\n\n"_s).size() >= 3, qPrintable(text));
    }
}

void TestInfoTexts::closesEveryMark()
{
    for (const InfoTopic topic : allInfoTopics) {
        for (const HostSystem system : {HostSystem::mac, HostSystem::linuxDesktop}) {
            for (const MarkdownRun &run : markdownRuns(infoText(topic, system).text)) {
                if (run.emphasis == Emphasis::code || run.emphasis == Emphasis::command)
                    continue; // A pattern may hold an asterisk.
                QVERIFY2(!run.text.contains(u'*') && !run.text.contains(u'`'),
                         qPrintable(run.text));
            }
        }
    }
}

void TestInfoTexts::namesItsSourcesOnLinux_data()
{
    QTest::addColumn<InfoTopic>("topic");
    QTest::addColumn<QString>("source");
    QTest::newRow("memory") << InfoTopic::memory << u"/proc/meminfo"_s;
    QTest::newRow("pressure") << InfoTopic::memory << u"/proc/pressure/memory"_s;
    QTest::newRow("relation to free") << InfoTopic::memory << u"`free`"_s;
    QTest::newRow("energy") << InfoTopic::power << u"/sys/class/powercap"_s;
    QTest::newRow("opening the counters") << InfoTopic::power << u"energy_uj"_s;
    QTest::newRow("ticks") << InfoTopic::cpu << u"/proc/stat"_s;
    QTest::newRow("relation to top") << InfoTopic::cpu << u"`top`"_s;
    QTest::newRow("frequency") << InfoTopic::cpu << u"scaling_cur_freq"_s;
    QTest::newRow("GPU load") << InfoTopic::gpu << u"gpu_busy_percent"_s;
    QTest::newRow("NPU") << InfoTopic::ane << u"npu_busy_time_us"_s;
    QTest::newRow("arguments") << InfoTopic::workloads << u"cmdline"_s;
    QTest::newRow("footprint") << InfoTopic::processes << u"RssAnon + VmSwap"_s;
    QTest::newRow("hidden processes") << InfoTopic::processes << u"hidepid"_s;
}

void TestInfoTexts::namesItsSourcesOnLinux()
{
    QFETCH(InfoTopic, topic);
    QFETCH(QString, source);
    QVERIFY(infoText(topic, HostSystem::linuxDesktop).text.contains(source));
}

void TestInfoTexts::saysWhatHoldsForTheMachine_data()
{
    QTest::addColumn<InfoTopic>("topic");
    QTest::addColumn<MachineCoverage>("machine");
    QTest::addColumn<QString>("words");

    const auto withGPU = [](Coverage coverage, bool isIntegrated = false) {
        return MachineCoverage{.isWhole = false,
                               .gpus = {{.integrated = isIntegrated, .load = coverage}}};
    };
    QTest::newRow("CPU watts that are locked")
        << InfoTopic::power << MachineCoverage{.isWhole = false, .cpuWatts = Coverage::locked}
        << u"CPU watts are locked here."_s;
    QTest::newRow("a package that is measured")
        << InfoTopic::power << MachineCoverage{.isWhole = false, .packageWatts = Coverage::known}
        << u"**Rest**"_s;
    QTest::newRow("a machine that is measured")
        << InfoTopic::power << MachineCoverage{.isWhole = false, .systemWatts = Coverage::known}
        << u"**whole machine**"_s;
    QTest::newRow("an NPU without a load")
        << InfoTopic::ane << MachineCoverage{.isWhole = false, .npuLoad = Coverage::unpublished}
        << u"publishes no load"_s;
    QTest::newRow("a card without its library")
        << InfoTopic::gpu << withGPU(Coverage::noLibrary) << u"is not installed"_s;
    QTest::newRow("a card with a new driver")
        << InfoTopic::gpu << withGPU(Coverage::newDriver) << u"waits for a restart"_s;
    QTest::newRow("a card that sleeps")
        << InfoTopic::gpuMemory << withGPU(Coverage::asleep) << u"would wake it"_s;
    QTest::newRow("an integrated GPU")
        << InfoTopic::gpuMemory << withGPU(Coverage::known, true) << u"set aside for it"_s;
}

void TestInfoTexts::saysWhatHoldsForTheMachine()
{
    QFETCH(const InfoTopic, topic);
    QFETCH(const MachineCoverage, machine);
    QFETCH(const QString, words);
    QVERIFY2(infoText(topic, machine).text.contains(words),
             qPrintable(infoText(topic, machine).text));
    MachineCoverage other = {.isWhole = false, .gpus = {{.load = Coverage::known}}};
    QVERIFY(!infoText(topic, other).text.contains(words));
}

void TestInfoTexts::namesNoServiceOfTheOtherSystem()
{
    for (const InfoTopic topic : allInfoTopics) {
        const QString linuxText = infoText(topic, HostSystem::linuxDesktop).text;
        for (const QString &service :
             {u"Apple"_s, u"macOS"_s, u"IOReport"_s, u"IORegistry"_s, u"Metal"_s, u"kern."_s,
              u"Activity Monitor"_s, u"proc_"_s, u"Core ML"_s, u"P1"_s})
            QVERIFY2(!linuxText.contains(service), qPrintable(service));
        const QString macText = infoText(topic, HostSystem::mac).text;
        QVERIFY(!macText.contains(u"/proc"_s) && !macText.contains(u"/sys"_s));
        QVERIFY(macText != linuxText);
    }
}

void TestInfoTexts::takesThisSystemByDefault()
{
    QCOMPARE(infoText(InfoTopic::gpu).text, infoText(InfoTopic::gpu, hostSystem()).text);
}

void TestInfoTexts::everyTextFitsTheSmallestWindow()
{
    QWidget window;
    window.resize(920, 760);
    window.show();
    for (const InfoTopic topic : allInfoTopics) {
        for (const HostSystem system : {HostSystem::mac, HostSystem::linuxDesktop}) {
            const InfoText info = infoText(topic, system);
            // Each at the height of its card's row in the smallest window.
            const bool top = topic == InfoTopic::memory || topic == InfoTopic::power;
            const bool bottom = topic == InfoTopic::workloads || topic == InfoTopic::processes;
            InfoButton button(info, &window);
            button.move(870, 15 + (top ? 64 : bottom ? 504 : 314));
            button.show();
            button.click();
            QVERIFY2(window.rect().contains(button.popover()->geometry()), qPrintable(info.title));
        }
    }
}

QTEST_MAIN(TestInfoTexts)
#include "tst_InfoTexts.moc"
