#include "sampler/SystemSampler.h"
#include "support/FaultyCalls.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;
using FaultyCalls::Call;

Q_DECLARE_METATYPE(corvane::test::FaultyCalls::Call)

namespace {

constexpr auto name = "history.jsonl";

} // namespace

/// The sampler while the disk with its history does not answer.
class TestHangingDisk : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup() { FaultyCalls::clear(); }
    void startsAndJoinsTheHistoryLater_data();
    void startsAndJoinsTheHistoryLater();
    void changesItsWindow();

private:
    std::unique_ptr<SystemSampler> start();
    QList<double> times(const SystemSampler &sampler) const;
    void tickUntil(SystemSampler &sampler, std::size_t samples);

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<AppSettings> m_settings;
    double m_now = 100;
};

/// The file has the samples 1 to 5; those taken here begin at 100.
void TestHangingDisk::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_settings = std::make_unique<AppSettings>();
    m_now = 100;
    HistoryStore store(m_folder->path());
    for (int t = 1; t <= 5; ++t)
        store.append({.t = double(t), .memTotal = 4, .memUsed = 1, .memPct = 25});
}

std::unique_ptr<SystemSampler> TestHangingDisk::start()
{
    SamplerSources sources{.memory = [] { return MemorySnapshot(); },
                           .chip = {},
                           .survey = {},
                           .now = [this] { return m_now++; }};
    return std::make_unique<SystemSampler>(*m_settings, std::move(sources), m_folder->path());
}

QList<double> TestHangingDisk::times(const SystemSampler &sampler) const
{
    QList<double> times;
    for (const SystemMetrics &sample : sampler.history())
        times.append(sample.timestamp);
    return times;
}

/// The disk's thread needs a moment after it has been let go.
void TestHangingDisk::tickUntil(SystemSampler &sampler, std::size_t samples)
{
    for (int tick = 0; tick < 40 && sampler.history().size() < samples; ++tick) {
        QTest::qSleep(50);
        sampler.tick();
    }
}

void TestHangingDisk::startsAndJoinsTheHistoryLater_data()
{
    QTest::addColumn<Call>("call");
    QTest::newRow("in opening") << Call::open;
    QTest::newRow("in reading") << Call::read;
}

void TestHangingDisk::startsAndJoinsTheHistoryLater()
{
    QFETCH(const Call, call);
    FaultyCalls::stall(call, name);
    const auto sampler = start();
    FaultyCalls::waitForStalled();
    sampler->tick();
    sampler->tick();
    QCOMPARE(times(*sampler), (QList<double>{100, 101, 102}));
    FaultyCalls::letGo();
    tickUntil(*sampler, 9);
    const QList<double> joined = times(*sampler);
    QCOMPARE(joined.first(9), (QList<double>{1, 2, 3, 4, 5, 100, 101, 102, 103}));
    QCOMPARE(joined.last(), m_now - 1);
    QCOMPARE(joined.size(), qsizetype(5 + m_now - 100));
}

void TestHangingDisk::changesItsWindow()
{
    const auto sampler = start();
    QCOMPARE(times(*sampler).last(), 100.0);
    FaultyCalls::stall(Call::read, name);
    const QSignalSpy changed(sampler.get(), &SystemSampler::historyChanged);
    m_settings->setHistoryWindow(HistoryWindow::oneMin);
    QCoreApplication::processEvents();
    QCOMPARE(changed.count(), 1);
    FaultyCalls::waitForStalled();
    sampler->tick();
    QCOMPARE(times(*sampler).last(), 101.0);
    FaultyCalls::letGo();
    const QList<double> before = times(*sampler);
    tickUntil(*sampler, static_cast<std::size_t>(before.size()) + 3);
    QCOMPARE(times(*sampler).first(before.size()), before);
}

QTEST_GUILESS_MAIN(TestHangingDisk)
#include "tst_HangingDisk.moc"
