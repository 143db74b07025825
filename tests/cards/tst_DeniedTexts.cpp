#include "cards/DeniedTexts.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

SystemMetrics machineOf(std::vector<GPUCoverage> gpus, std::vector<GPUMetrics> metrics = {})
{
    auto coverage = std::make_shared<MachineCoverage>();
    coverage->isWhole = false;
    coverage->gpus = std::move(gpus);
    ChipReading chip{.gpus = std::move(metrics)};
    chip.coverage = std::move(coverage);
    return {.chip = std::move(chip)};
}

GPUCoverage card(const QString &device, Coverage load, Coverage watts)
{
    return {.device = device, .name = u"Card"_s, .load = load, .watts = watts};
}

} // namespace

class TestDeniedTexts : public QObject {
    Q_OBJECT

private slots:
    void nameTheReason_data();
    void nameTheReason();
    void tellWhatAGPUDoesNotTell_data();
    void tellWhatAGPUDoesNotTell();
    void tellWhatTheOtherPartsDoNotTell();
};

void TestDeniedTexts::nameTheReason_data()
{
    QTest::addColumn<Coverage>("coverage");
    QTest::addColumn<QString>("note");
    QTest::addColumn<QString>("line"); ///< Of a GPU's card that has nothing to draw.
    QTest::newRow("known") << Coverage::known << QString() << u"Load not published"_s;
    QTest::newRow("absent") << Coverage::absent << QString() << u"Load not published"_s;
    QTest::newRow("asleep") << Coverage::asleep << u"Load: the device sleeps and is left asleep."_s
                            << u"Asleep"_s;
    QTest::newRow("locked") << Coverage::locked << u"Load: locked, only root may read this."_s
                            << u"The load is locked"_s;
    QTest::newRow("not published")
        << Coverage::unpublished << u"Load: not published by the driver."_s
        << u"Load not published"_s;
    QTest::newRow("without a library")
        << Coverage::noLibrary << u"Load: the driver's library is missing."_s
        << u"NVIDIA’s driver library is missing"_s;
    QTest::newRow("a new driver") << Coverage::newDriver
                                  << u"Load: the driver was updated and waits for a restart."_s
                                  << u"The driver and its library differ"_s;
}

void TestDeniedTexts::nameTheReason()
{
    QFETCH(Coverage, coverage);
    QTEST(deniedNote(u"Load"_s, coverage), "note");
    const DeniedNotice notice = gpuNotice(coverage);
    QTEST(notice.line, "line");
    QVERIFY(!notice.hint.isEmpty());
    QCOMPARE(notice.symbol, coverage == Coverage::asleep ? u"moon.zzz"_s : u"info.circle"_s);
}

void TestDeniedTexts::tellWhatAGPUDoesNotTell_data()
{
    using enum Coverage;
    QTest::addColumn<SystemMetrics>("current");
    QTest::addColumn<QStringList>("notes");
    QTest::newRow("all is known") << machineOf({card(u"a"_s, known, known)}, {{.device = u"a"_s}})
                                  << QStringList();
    QTest::newRow("load and watts for the same reason: once")
        << machineOf({card(u"a"_s, asleep, asleep)})
        << QStringList{u"Load of Card: the device sleeps and is left asleep."_s};
    QTest::newRow("different reasons")
        << machineOf({card(u"a"_s, locked, unpublished)})
        << QStringList{u"Load of Card: locked, only root may read this."_s,
                       u"Watts of Card: not published by the driver."_s};
    QTest::newRow("two cards of one name are numbered")
        << machineOf({card(u"a"_s, known, known), card(u"b"_s, noLibrary, noLibrary)})
        << QStringList{u"Load of GPU 1, Card: the driver's library is missing."_s};
    const auto limitedBy = [](GPULimit limit) {
        return machineOf({card(u"a"_s, known, known)}, {{.device = u"a"_s, .limit = limit}});
    };
    QTest::newRow("held back by its power limit")
        << limitedBy(GPULimit::power) << QStringList{u"Card: slowed down by its power limit."_s};
    QTest::newRow("by its temperature") << limitedBy(GPULimit::temperature)
                                        << QStringList{u"Card: slowed down by its temperature."_s};
    QTest::newRow("by its hardware")
        << limitedBy(GPULimit::hardware) << QStringList{u"Card: slowed down by its hardware."_s};
    GPUCoverage integrated = card(u"i"_s, unpublished, unpublished);
    integrated.integrated = integrated.usesSystemMemory = true;
    QTest::newRow("an integrated GPU beside a card does not count")
        << machineOf({integrated, card(u"a"_s, known, known)}) << QStringList();
    QTest::newRow("no GPU") << machineOf({}) << QStringList();
}

void TestDeniedTexts::tellWhatAGPUDoesNotTell()
{
    QFETCH(SystemMetrics, current);
    QTEST(gpuNotes(current), "notes");
}

void TestDeniedTexts::tellWhatTheOtherPartsDoNotTell()
{
    const MachineCoverage machine{.isWhole = false,
                                  .cpuWatts = Coverage::locked,
                                  .cpuTemperature = Coverage::unpublished,
                                  .npuLoad = Coverage::unpublished,
                                  .npuWatts = Coverage::asleep,
                                  .gpus = {card(u"a"_s, Coverage::known, Coverage::asleep)}};
    const QString cpu = u"CPU watts: locked, only root may read this."_s;
    const QString npu = u"NPU watts: the device sleeps and is left asleep."_s;
    QCOMPARE(cpuNotes(machine),
             (QStringList{cpu, u"CPU temperature: not published by the driver."_s}));
    QCOMPARE(npuNotes(machine), (QStringList{u"NPU load: not published by the driver."_s, npu}));
    QCOMPARE(powerNotes(machine),
             (QStringList{cpu, u"Watts of Card: the device sleeps and is left asleep."_s, npu}));
    QVERIFY(cpuNotes({}).isEmpty() && npuNotes({}).isEmpty() && powerNotes({}).isEmpty());
}

QTEST_GUILESS_MAIN(TestDeniedTexts)
#include "tst_DeniedTexts.moc"
