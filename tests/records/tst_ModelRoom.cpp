#include "records/ModelRoom.h"

#include <QTest>

#include <memory>

using namespace corvane;
using namespace Qt::StringLiterals;

using Place = ModelRoom::Place;
using Room = std::optional<std::uint64_t>;

Q_DECLARE_METATYPE(Room)
Q_DECLARE_METATYPE(SystemMetrics)

namespace {

constexpr std::uint64_t gib = std::uint64_t(1) << 30;

/// A sample of a machine that is no Mac.
SystemMetrics machineWith(const MemorySnapshot &memory, const std::vector<GPUCoverage> &gpus = {},
                          const std::vector<GPUMetrics> &metrics = {})
{
    SystemMetrics sample{.memory = memory};
    sample.chip = ChipReading();
    sample.chip->coverage =
        std::make_shared<MachineCoverage>(MachineCoverage{.isWhole = false, .gpus = gpus});
    sample.chip->gpus = metrics;
    return sample;
}

GPUCoverage card(const QString &device, std::uint64_t total)
{
    return {.device = device, .memory = Coverage::known, .memoryTotal = total};
}

GPUMetrics used(const QString &device, std::uint64_t bytes)
{
    return {.device = device, .memoryUsed = bytes};
}

SystemMetrics mac(std::uint64_t total, std::uint64_t inUse, const Room &gpuUsed,
                  const Room &limit = {})
{
    return {.memory = {.total = total, .used = inUse, .gpuLimit = limit, .gpuUsed = gpuUsed}};
}

constexpr MemorySnapshot pc{.total = 64 * gib, .used = 20 * gib, .available = 41 * gib};

} // namespace

class TestModelRoom : public QObject {
    Q_OBJECT

private slots:
    void reckons_data();
    void reckons();
    void takesTheCardWithMostRoom();
    void addsWhatAnIntegratedGPUHasForItself();
    void tellsPressure();
};

void TestModelRoom::reckons_data()
{
    QTest::addColumn<SystemMetrics>("sample");
    QTest::addColumn<Room>("bytes");
    QTest::addColumn<int>("place");
    const auto row = [](const char *name, const SystemMetrics &sample, const Room &bytes,
                        Place place = Place::memory) {
        QTest::newRow(name) << sample << bytes << static_cast<int>(place);
    };
    row("before the first sample", SystemMetrics::placeholder(), {});
    row("no GPU: what is available, less 1 GiB", machineWith(pc), 40 * gib);
    row("less than 1 GiB available", machineWith({.total = 64 * gib, .available = gib / 2}), 0);
    row("memory of which the kernel does not say it", machineWith({.total = 64 * gib}), {});
    row("an integrated GPU without figures",
        machineWith(pc, {{.device = u"i"_s, .integrated = true, .usesSystemMemory = true}}),
        40 * gib);
    row("a card that shares the machine's memory",
        machineWith(pc, {{.device = u"gb"_s, .usesSystemMemory = true}}, {used(u"gb"_s, gib)}),
        40 * gib);
    row("a card", machineWith(pc, {card(u"a"_s, 24 * gib)}, {used(u"a"_s, 10 * gib)}), 13 * gib,
        Place::card);
    row("a full card", machineWith(pc, {card(u"a"_s, 24 * gib)}, {used(u"a"_s, 25 * gib)}), 0,
        Place::card);
    row("a card beside an integrated GPU",
        machineWith(pc,
                    {{.device = u"i"_s, .integrated = true, .usesSystemMemory = true},
                     card(u"a"_s, 24 * gib)},
                    {used(u"a"_s, 10 * gib)}),
        13 * gib, Place::card);
    GPUCoverage asleep = card(u"a"_s, 24 * gib);
    asleep.memory = Coverage::asleep;
    row("a card that sleeps", machineWith(pc, {asleep}), {});
    row("a card that was not read", machineWith(pc, {card(u"a"_s, 24 * gib)}), {});
    GPUMetrics bound = used(u"a"_s, 2 * gib);
    bound.memoryIsLowerBound = true;
    row("a card that tells a lower bound", machineWith(pc, {card(u"a"_s, 24 * gib)}, {bound}), {});
    row("a card of unknown size",
        machineWith(pc, {{.device = u"a"_s, .memory = Coverage::known}}, {used(u"a"_s, gib)}), {});

    row("a Mac that does not tell", mac(64 * gib, 20 * gib, {}), {}, Place::unified);
    row("a Mac of 16 GB: two thirds", mac(16 * gib, 4 * gib, 2 * gib), 16 * gib / 3 * 2 - 3 * gib,
        Place::unified);
    row("a Mac of 36 GB: two thirds", mac(36 * gib, 4 * gib, 0), 23 * gib, Place::unified);
    row("a Mac of 64 GB: three quarters", mac(64 * gib, 4 * gib, 8 * gib), 39 * gib,
        Place::unified);
    row("a Mac of which other programs use most", mac(64 * gib, 60 * gib, 8 * gib), 3 * gib,
        Place::unified);
    row("a Mac with a limit of its own", mac(64 * gib, 4 * gib, 8 * gib, 20 * gib), 11 * gib,
        Place::unified);
    row("a limit above all memory", mac(64 * gib, 0, 0, 100 * gib), 63 * gib, Place::unified);
    row("a GPU that uses more than the limit", mac(64 * gib, 30 * gib, 25 * gib, 20 * gib), 0,
        Place::unified);
}

void TestModelRoom::reckons()
{
    QFETCH(SystemMetrics, sample);
    QFETCH(Room, bytes);
    QFETCH(int, place);
    const auto room = modelRoom(sample);
    QCOMPARE(room ? Room(room->bytes) : Room(), bytes);
    if (room)
        QCOMPARE(static_cast<int>(room->place), place);
}

void TestModelRoom::takesTheCardWithMostRoom()
{
    GPUCoverage asleep = card(u"c"_s, 48 * gib);
    asleep.memory = Coverage::asleep;
    const auto room = modelRoom(machineWith(
        pc, {card(u"a"_s, 24 * gib), card(u"b"_s, 16 * gib), asleep, card(u"d"_s, 16 * gib)},
        {used(u"a"_s, 20 * gib), used(u"b"_s, 2 * gib), used(u"d"_s, 2 * gib)}));
    QVERIFY(room);
    QCOMPARE(room->gpu, 1);
    QCOMPARE(room->free, 14 * gib);
    QCOMPARE(room->total, 16 * gib);
    QCOMPARE(room->used, 2 * gib);
}

void TestModelRoom::addsWhatAnIntegratedGPUHasForItself()
{
    GPUMetrics metrics = used(u"i"_s, 5 * gib);
    metrics.memoryOwnUsed = gib / 4;
    const auto room = modelRoom(machineWith(pc,
                                            {{.device = u"i"_s,
                                              .integrated = true,
                                              .usesSystemMemory = true,
                                              .memory = Coverage::known,
                                              .memoryTotal = 32 * gib,
                                              .memoryOwn = gib / 2}},
                                            {metrics}));
    QVERIFY(room);
    QCOMPARE(room->ownFree, gib / 4);
    QCOMPARE(room->bytes, 40 * gib + gib / 4);
}

void TestModelRoom::tellsPressure()
{
    for (const MemoryPressure pressure :
         {MemoryPressure::normal, MemoryPressure::warning, MemoryPressure::critical}) {
        MemorySnapshot memory = pc;
        memory.pressure = pressure;
        QCOMPARE(modelRoom(machineWith(memory))->isUnderPressure,
                 pressure != MemoryPressure::normal);
    }
}

QTEST_APPLESS_MAIN(TestModelRoom)
#include "tst_ModelRoom.moc"
