#include "chip/ChipChannels.h"
#include "chip/ScriptedChannel.h"

#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

/// A bridge whose only difference holds these channels.
struct ScriptedBridge {
    struct Sample { };

    std::unique_ptr<Sample> takeSample() { return std::make_unique<Sample>(); }

    std::unique_ptr<Sample> delta(const Sample *from, const Sample *to) const
    {
        return from && to ? std::make_unique<Sample>() : nullptr;
    }

    template <typename Visit>
    void iterate(const Sample *delta, const Visit &visit)
    {
        ++*walks;
        for (const ScriptedChannel &channel : channels) {
            if (delta)
                channel.show(visit);
        }
    }

    ScriptedChannels channels = {};
    int *walks = nullptr;
};

ScriptedChannel gpuChannel(const char *subgroup, const char *name, ScriptedStates states)
{
    ScriptedChannel channel = gpu(std::move(states));
    channel.subgroup = subgroup;
    channel.name = name;
    return channel;
}

const ScriptedChannel limiter =
    gpuChannel("CLTM-induced GPU Performance States", "GPU_CLTM", {{"NO_CLTM", 240}});
const ScriptedChannel booster =
    gpuChannel("GPU Boost Controller Performance States", "BSTGPUPH", {{"P1", 240}});
const ScriptedChannel performance = gpu({{"OFF", 240}});

} // namespace

class TestChipChannels : public QObject {
    Q_OBJECT

private slots:
    void isNullWithoutABridge();
    void showsChannels_data();
    void showsChannels();
    void looksForGPUStatesUntilThereAreAny();
    void knowsWhichStatesThereAre();
    void hasNoDeltaWithoutBothSides();
};

void TestChipChannels::isNullWithoutABridge()
{
    QVERIFY(!ChipChannels<ScriptedBridge>::over(nullptr));
}

void TestChipChannels::showsChannels_data()
{
    QTest::addColumn<ScriptedChannels>("channels");
    QTest::addColumn<QStringList>("names");
    const auto row = [](const char *name, ScriptedChannels channels, const QStringList &names) {
        QTest::newRow(name) << std::move(channels) << names;
    };
    row("the GPU's performance states alone", {performance, booster, limiter}, {u"GPUPH"_s});
    row("the same in another order", {limiter, booster, performance}, {u"GPUPH"_s});
    row("all of a GPU that has none", {booster, limiter}, {u"BSTGPUPH"_s, u"GPU_CLTM"_s});
    row("all of a GPU whose performance states are no state channel",
        {gpuChannel("GPU Performance States", "GPUPH", {}), limiter}, {u"GPUPH"_s, u"GPU_CLTM"_s});
    row("energy and clusters whatever the GPU has",
        {energy("CPU Energy", 5), performance, limiter, cpu("PCPU", {{"IDLE", 1}})},
        {u"CPU Energy"_s, u"GPUPH"_s, u"PCPU"_s});
    row("slower clusters under the name of the efficient ones",
        {cpu("MCPU0", {}), cpu("MCPU1", {}), cpu("MCPM0", {}), cpu("PCPU", {})},
        {u"ECPU0"_s, u"ECPU1"_s, u"MCPM0"_s, u"PCPU"_s});
    row("names of energy as they are", {energy("MCPU00", 5)}, {u"MCPU00"_s});
    row("no channels", {}, {});
}

void TestChipChannels::showsChannels()
{
    QFETCH(ScriptedChannels, channels);
    int walks = 0;
    const auto chip = ChipChannels<ScriptedBridge>::over(
        std::make_unique<ScriptedBridge>(ScriptedBridge{channels, &walks}));
    const auto sample = chip->takeSample();
    const auto delta = chip->delta(sample.get(), sample.get());
    for (int tick = 0; tick < 2; ++tick) {
        QStringList names;
        chip->iterate(delta.get(), [&names](const ReportingChannel &channel) {
            names.append(QString::fromUtf8(channel.name.data(), qsizetype(channel.name.size())));
        });
        QTEST(names, "names");
    }
}

void TestChipChannels::looksForGPUStatesUntilThereAreAny()
{
    int walks = 0;
    const auto chip = ChipChannels<ScriptedBridge>::over(
        std::make_unique<ScriptedBridge>(ScriptedBridge{{performance, limiter}, &walks}));
    const auto sample = chip->takeSample();
    for (int tick = 0; tick < 3; ++tick)
        chip->iterate(sample.get(), [](const ReportingChannel &) {});
    QCOMPARE(walks, 4); // The first tick's twice.
}

void TestChipChannels::knowsWhichStatesThereAre()
{
    const auto walked = [](const ScriptedChannels &channels) {
        int walks = 0;
        const auto chip = ChipChannels<ScriptedBridge>::over(
            std::make_unique<ScriptedBridge>(ScriptedBridge{channels, &walks}));
        chip->iterate(chip->takeSample().get(), [](const ReportingChannel &) {});
        return std::pair(chip->hasCPUStates(), chip->hasGPUStates());
    };
    QVERIFY(walked({energy("CPU Energy", 1)}) == std::pair(false, false));
    QVERIFY(walked({performance}) == std::pair(false, true));
    QVERIFY(walked({limiter}) == std::pair(false, true));
    QVERIFY(walked({cpu("PCPU", {{"IDLE", 1}})}) == std::pair(true, false));
    QVERIFY(walked({cpu("PCPU", {}), gpuChannel("Histogram", "Time", {})})
            == std::pair(false, false));
}

void TestChipChannels::hasNoDeltaWithoutBothSides()
{
    int walks = 0;
    const auto chip = ChipChannels<ScriptedBridge>::over(
        std::make_unique<ScriptedBridge>(ScriptedBridge{{performance}, &walks}));
    const auto sample = chip->takeSample();
    QVERIFY(!chip->delta(sample.get(), decltype(sample.get())()));
    QVERIFY(!chip->delta(decltype(sample.get())(), sample.get()));
}

QTEST_APPLESS_MAIN(TestChipChannels)
#include "tst_ChipChannels.moc"
