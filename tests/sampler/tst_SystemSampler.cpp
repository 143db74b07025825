#include "sampler/SystemSampler.h"

#include "support/OddFiles.h"

#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTimerEvent>

#include <atomic>
#include <memory>
#include <mutex>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

/// A machine whose numbers and time are set by the test.
struct ScriptedMachine {
    double now = 1000;
    MemorySnapshot memory = {.total = 1000, .used = 250};
    std::optional<ChipReading> chip = {};
    SurveySource survey = {};
    std::chrono::milliseconds surveyPatience = std::chrono::minutes(1);

    SamplerSources sources()
    {
        return {.memory = [this] { return memory; },
                .chip = [this] { return chip; },
                .survey = survey,
                .now = [this] { return now++; },
                .diskPatience = std::chrono::minutes(1),
                .surveyPatience = surveyPatience};
    }
};

PersistedMetric record(double t)
{
    return {.t = t, .memTotal = 1000, .memUsed = 500, .memPct = 50, .cpuPct = 37.5, .cpuW = 2};
}

void fillHistory(const QString &directory, int records)
{
    HistoryStore store(directory);
    for (int i = 0; i < records; ++i)
        store.append(record(i));
}

qint64 linesIn(const QString &directory)
{
    QFile file(directory + u"/history.jsonl"_s);
    return file.open(QIODevice::ReadOnly) ? file.readAll().count('\n') : -1;
}

QTimer &timerOf(const SystemSampler &sampler)
{
    return *sampler.findChild<QTimer *>();
}

/// Lets the timer fire, as after a second.
void fire(QTimer &timer)
{
    QTimerEvent event(timer.timerId());
    QCoreApplication::sendEvent(&timer, &event);
}

std::vector<SystemMetrics> samples(int count)
{
    std::vector<SystemMetrics> list;
    for (int i = 0; i < count; ++i)
        list.push_back({.timestamp = double(i)});
    return list;
}

} // namespace

class TestSystemSampler : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void firstSampleIsThereAtOnce();
    void continuesTheHistoryOfTheFile();
    void keepsSixtySamples();
    void aTimerOfOneSecondTicks();
    void startsOneTimerAgain();
    void samplesWithoutAChip();
    void samplesWithAChip();
    void publishesCurrentBeforeHistory();
    void continuesAfterARestart();
    void goesOnWithAnyHistory_data();
    void goesOnWithAnyHistory();
    void surveysOnEveryThirdTick();
    void takesNoSurveyThatNobodyLooksAt();
    void surveysAtOnceForEachWhoBeginsToLook();
    void dropsASurveyThatEndsAfterTheLastLook();
    void waitsForASurveyOnlySoLong();
    void publishesProcessesThenWorkloads();
    void aSlowSurveyDelaysNoTickAndTwoAreEnough();
    void publishesTheRankingWhileArgumentsAreAwaited();
    void dropsASurveyThatEndsAfterALaterOne();
    void emptiesListsOfWhichNoSurveyEnds();
    void aSurveyMayOutliveTheSampler();
    void trimsOnEverySixtiethTick();
    void settingTheSameWindowAgainChangesNothing();
    void historyFitsANewWindow_data();
    void historyFitsANewWindow();

private:
    void settle(const SystemSampler &sampler);

    QTemporaryDir m_folder;
    QString m_directory;
    ScriptedMachine m_machine;
    std::optional<AppSettings> m_settings;
};

void TestSystemSampler::initTestCase()
{
    QCoreApplication::setOrganizationName(u"Corvane"_s);
    QCoreApplication::setApplicationName(u"Corvane"_s);
}

void TestSystemSampler::init()
{
    static int test = 0;
    m_directory = m_folder.filePath(QString::number(test++));
    m_machine = {};
    m_settings.emplace();
}

/// Waits until the file work submitted so far is done: a change of the window loads, and a load
/// waits for what was submitted before.
void TestSystemSampler::settle(const SystemSampler &sampler)
{
    QSignalSpy changed(&sampler, &SystemSampler::historyChanged);
    m_settings->setHistoryWindow(HistoryWindow::oneMin);
    QCoreApplication::processEvents();
    QCOMPARE(changed.count(), 1);
}

void TestSystemSampler::firstSampleIsThereAtOnce()
{
    const SystemSampler sampler(*m_settings, m_machine.sources(), m_directory);
    QCOMPARE(sampler.history().size(), std::size_t(1));
    QCOMPARE(sampler.history().front().id, sampler.current().id);
    QCOMPARE(sampler.current().timestamp, 1000.0);
    QCOMPARE(sampler.current().memory.used, quint64(250));
    QVERIFY(sampler.processes().empty());
    QVERIFY(sampler.aiWorkloads().empty());
}

void TestSystemSampler::continuesTheHistoryOfTheFile()
{
    fillHistory(m_directory, 200);
    const SystemSampler sampler(*m_settings, m_machine.sources(), m_directory);
    const auto &history = sampler.history();
    QCOMPARE(history.size(), std::size_t(60)); // 60 of the file and the first tick, cut to 60.
    for (std::size_t i = 0; i < 59; ++i) {
        QCOMPARE(history[i].timestamp, 141.0 + double(i));
        QVERIFY(history[i].chip);
        QCOMPARE(history[i].chip->cpuActiveFraction, 0.375);
        QVERIFY(!history[i].chip->cpuTempC);
        QVERIFY(!history[i].chip->packageTempC);
    }
    QCOMPARE(history.back().timestamp, 1000.0);
}

void TestSystemSampler::keepsSixtySamples()
{
    SystemSampler sampler(*m_settings, m_machine.sources(), m_directory);
    for (int i = 0; i < 100; ++i) {
        sampler.tick();
        QVERIFY(sampler.history().size() <= 60);
    }
    QCOMPARE(sampler.history().size(), std::size_t(60));
    QCOMPARE(sampler.history().back().timestamp, 1100.0);
    QCOMPARE(sampler.history().front().timestamp, 1041.0);
}

void TestSystemSampler::aTimerOfOneSecondTicks()
{
    const SystemSampler sampler(*m_settings, m_machine.sources(), m_directory);
    QTimer &timer = timerOf(sampler);
    QVERIFY(timer.isActive());
    QVERIFY(!timer.isSingleShot());
    QCOMPARE(timer.interval(), 1000);
    fire(timer);
    fire(timer);
    QCOMPARE(sampler.history().size(), std::size_t(3));
    QCOMPARE(sampler.current().timestamp, 1002.0);
}

void TestSystemSampler::startsOneTimerAgain()
{
    SystemSampler sampler(*m_settings, m_machine.sources(), m_directory);
    timerOf(sampler).stop();
    sampler.start();
    sampler.start();
    QCOMPARE(sampler.findChildren<QTimer *>().size(), 1);
    QVERIFY(timerOf(sampler).isActive());
    QCOMPARE(sampler.history().size(), std::size_t(1)); // The next tick is a second away.
}

void TestSystemSampler::samplesWithoutAChip()
{
    SamplerSources sources = m_machine.sources();
    sources.chip = {};
    SystemSampler sampler(*m_settings, sources, m_directory);
    QVERIFY(!sampler.current().chip);
    sampler.tick();
    QVERIFY(!sampler.current().chip);
    QCOMPARE(sampler.current().memory.total, quint64(1000));
}

void TestSystemSampler::samplesWithAChip()
{
    m_machine.chip = ChipReading{.cpuWatts = 3, .cpuTempC = 55};
    SystemSampler sampler(*m_settings, m_machine.sources(), m_directory);
    QCOMPARE(sampler.current().chip->cpuWatts, 3.0);
    m_machine.chip.reset(); // A tick without a reading of the chip.
    sampler.tick();
    QVERIFY(!sampler.current().chip);
    QCOMPARE(sampler.history().front().chip->cpuTempC, std::optional<double>(55));
}

void TestSystemSampler::publishesCurrentBeforeHistory()
{
    SystemSampler sampler(*m_settings, m_machine.sources(), m_directory);
    QStringList order;
    connect(&sampler, &SystemSampler::currentChanged, this, [&] {
        order.append(
            u"current %1 of %2"_s.arg(sampler.current().timestamp).arg(sampler.history().size()));
    });
    connect(&sampler, &SystemSampler::historyChanged, this,
            [&] { order.append(u"history %1"_s.arg(sampler.history().size())); });
    sampler.tick();
    QCOMPARE(order, (QStringList{u"current 1001 of 1"_s, u"history 2"_s}));
}

void TestSystemSampler::continuesAfterARestart()
{
    m_machine.chip = ChipReading{.cpuWatts = 1.25, .gpuActiveFraction = 0.5};
    {
        SystemSampler sampler(*m_settings, m_machine.sources(), m_directory);
        for (int i = 0; i < 4; ++i)
            sampler.tick();
    }
    const SystemSampler sampler(*m_settings, m_machine.sources(), m_directory);
    QCOMPARE(sampler.history().size(), std::size_t(6));
    for (std::size_t i = 0; i < 6; ++i)
        QCOMPARE(sampler.history()[i].timestamp, 1000.0 + double(i));
    QCOMPARE(sampler.history().front().chip->cpuWatts, 1.25);
    QCOMPARE(sampler.history().front().chip->gpuActiveFraction, 0.5);
    QCOMPARE(sampler.history().front().memory.used, quint64(250));
}

void TestSystemSampler::goesOnWithAnyHistory_data()
{
    QTest::addColumn<PutOddFile>("put");
    QTest::addColumn<bool>("keepsRecords");
    QTest::newRow("a FIFO without a reader or writer") << &putFIFO << false;
    QTest::newRow("garbage") << &putGarbage << true;
}

/// A sampler that waited for a FIFO would wait for ever.
void TestSystemSampler::goesOnWithAnyHistory()
{
    QFETCH(const PutOddFile, put);
    QFETCH(const bool, keepsRecords);
    QVERIFY(QDir().mkpath(m_directory));
    QVERIFY(put(m_directory + "/history.jsonl"_L1));
    m_machine.chip = ChipReading{.cpuWatts = 3};
    m_machine.survey.take = [](const RankingReport &) { return Survey{.processes = {{.id = 7}}}; };
    {
        SystemSampler sampler(*m_settings, m_machine.sources(), m_directory);
        timerOf(sampler).stop();
        const QSignalSpy surveys(&sampler, &SystemSampler::processesChanged);
        const auto interest = sampler.lookAtProcesses();
        for (int tick = 2; tick <= 61; ++tick) { // A trim is among them.
            sampler.tick();
            QCOMPARE(sampler.current().timestamp, 999.0 + tick);
            QCOMPARE(sampler.current().chip->cpuWatts, 3.0);
            QCOMPARE(sampler.history().size(), std::size_t(qMin(tick, 60)));
            QTRY_COMPARE(surveys.count(), 1 + tick / 3);
        }
        settle(sampler);
        QCOMPARE(sampler.history().size(), std::size_t(60));
        QCOMPARE(sampler.processes().size(), std::size_t(1));
    }
    const SystemSampler next(*m_settings, m_machine.sources(), m_directory);
    QCOMPARE(next.history().size(), std::size_t(keepsRecords ? 60 : 1));
    QCOMPARE(next.history().front().timestamp, keepsRecords ? 1002.0 : 1061.0);
    QCOMPARE(QFileInfo(m_directory + "/history.jsonl"_L1).isFile(), keepsRecords);
}

void TestSystemSampler::surveysOnEveryThirdTick()
{
    std::atomic<int> surveys = 0;
    m_machine.survey.take = [&surveys](const RankingReport &) {
        ++surveys;
        return Survey{};
    };
    SystemSampler sampler(*m_settings, m_machine.sources(), m_directory); // Tick 1.
    timerOf(sampler).stop();
    QSignalSpy published(&sampler, &SystemSampler::processesChanged);
    const auto interest = sampler.lookAtProcesses();
    for (int tick = 2; tick <= 9; ++tick) {
        sampler.tick();
        QTRY_COMPARE(published.count(), 1 + tick / 3);
    }
    QCOMPARE(surveys.load(), 4);
}

void TestSystemSampler::takesNoSurveyThatNobodyLooksAt()
{
    std::atomic<int> surveys = 0;
    m_machine.survey.take = [&surveys](const RankingReport &) {
        ++surveys;
        return Survey{};
    };
    SystemSampler sampler(*m_settings, m_machine.sources(), m_directory);
    timerOf(sampler).stop();
    for (int tick = 2; tick <= 30; ++tick)
        sampler.tick();
    QCOMPARE(surveys.load(), 0);
}

void TestSystemSampler::surveysAtOnceForEachWhoBeginsToLook()
{
    // A survey or rest that was begun last may outlive this test.
    const auto surveys = std::make_shared<std::atomic<int>>(0);
    const auto rests = std::make_shared<std::atomic<int>>(0);
    m_machine.survey = {.take =
                            [surveys](const RankingReport &) {
                                ++*surveys;
                                return Survey{.processes = {{.id = 7}}, .workloads = {{.id = 7}}};
                            },
                        .rest = [rests] { ++*rests; }};
    SystemSampler sampler(*m_settings, m_machine.sources(), m_directory);
    timerOf(sampler).stop();
    auto window = sampler.lookAtProcesses();
    sampler.awaitSurvey();
    QCOMPARE(sampler.aiWorkloads().size(), std::size_t(1));
    QCOMPARE(surveys->load(), 1);
    auto stream = sampler.lookAtProcesses();
    sampler.awaitSurvey();
    QCOMPARE(surveys->load(), 2);

    // As long as one of them looks.
    window.reset();
    QTRY_VERIFY((sampler.tick(), surveys->load() > 2)); // A survey may be over but not delivered.
    QCOMPARE(sampler.processes().size(), std::size_t(1));
    QCOMPARE(rests->load(), 0);
    stream.reset();
    QVERIFY(sampler.processes().empty());
    QVERIFY(sampler.aiWorkloads().empty());
    QTRY_COMPARE(rests->load(), 1); // A survey may have been begun before.
    const int before = surveys->load();
    for (int tick = 0; tick < 6; ++tick)
        sampler.tick();
    QCOMPARE(surveys->load(), before);
    window = sampler.lookAtProcesses();
    sampler.awaitSurvey();
    QCOMPARE(sampler.processes().size(), std::size_t(1));
    QCOMPARE(surveys->load(), before + 1);
}

void TestSystemSampler::dropsASurveyThatEndsAfterTheLastLook()
{
    static std::mutex gate; // Jobs may outlive the test.
    std::unique_lock closed(gate);
    std::atomic<bool> ended = false;
    m_machine.survey.take = [&](const RankingReport &) {
        {
            const std::lock_guard wait(gate);
        }
        ended = true;
        return Survey{.processes = {{.id = 7}}};
    };
    SystemSampler sampler(*m_settings, m_machine.sources(), m_directory);
    timerOf(sampler).stop();
    auto interest = sampler.lookAtProcesses();
    interest.reset();
    closed.unlock();
    QTRY_VERIFY(ended);
    QTest::qWait(1);
    QVERIFY(sampler.processes().empty());
}

void TestSystemSampler::waitsForASurveyOnlySoLong()
{
    static std::mutex gate; // Jobs may outlive the test.
    std::unique_lock closed(gate);
    m_machine.surveyPatience = std::chrono::milliseconds(1);
    m_machine.survey.take = [](const RankingReport &) {
        const std::lock_guard wait(gate);
        return Survey{.processes = {{.id = 7}}};
    };
    SystemSampler sampler(*m_settings, m_machine.sources(), m_directory);
    timerOf(sampler).stop();
    sampler.awaitSurvey(); // None was begun.
    const auto interest = sampler.lookAtProcesses();
    sampler.awaitSurvey();
    QVERIFY(sampler.processes().empty());
    closed.unlock();
    QTRY_COMPARE(sampler.processes().size(), std::size_t(1));
}

void TestSystemSampler::publishesProcessesThenWorkloads()
{
    m_machine.survey.take = [](const RankingReport &) {
        return Survey{.processes = {{.id = 7, .name = u"ollama"_s, .memory = 300}},
                      .workloads = {{.id = 7, .pid = 7, .processName = u"ollama"_s}}};
    };
    SystemSampler sampler(*m_settings, m_machine.sources(), m_directory);
    timerOf(sampler).stop();
    QStringList order;
    connect(&sampler, &SystemSampler::processesChanged, this, [&] {
        order.append(u"processes %1, workloads %2"_s.arg(sampler.processes().size())
                         .arg(sampler.aiWorkloads().size()));
    });
    connect(&sampler, &SystemSampler::aiWorkloadsChanged, this,
            [&] { order.append(u"workloads %1"_s.arg(sampler.aiWorkloads().size())); });
    const auto interest = sampler.lookAtProcesses();
    QTRY_COMPARE(order, (QStringList{u"processes 1, workloads 0"_s, u"workloads 1"_s}));
}

void TestSystemSampler::aSlowSurveyDelaysNoTickAndTwoAreEnough()
{
    static std::mutex gate; // Jobs may outlive the test.
    std::unique_lock closed(gate);
    static std::atomic<int> begun = 0;
    m_machine.survey.take = [&](const RankingReport &) {
        ++begun;
        const std::lock_guard wait(gate);
        return Survey{};
    };
    SystemSampler sampler(*m_settings, m_machine.sources(), m_directory);
    timerOf(sampler).stop();
    QSignalSpy published(&sampler, &SystemSampler::processesChanged);
    const auto interest = sampler.lookAtProcesses();
    for (int tick = 2; tick <= 30; ++tick)
        sampler.tick();
    QCOMPARE(sampler.history().size(), std::size_t(30));
    QTRY_COMPARE(begun.load(), 2);
    QCOMPARE(published.count(), 0);
    closed.unlock();
    QTRY_VERIFY(published.count() > 0);
    const auto tickThrice = [&sampler] {
        for (int i = 0; i < 3; ++i)
            sampler.tick();
        return begun.load();
    };
    QTRY_VERIFY(tickThrice() >= 4);
}

void TestSystemSampler::publishesTheRankingWhileArgumentsAreAwaited()
{
    static std::mutex gate; // Jobs may outlive the test.
    std::unique_lock closed(gate);
    m_machine.survey.take = [](const RankingReport &report) {
        report({{.id = 7}});
        const std::lock_guard wait(gate);
        return Survey{.processes = {{.id = 7}}, .workloads = {{.id = 7}}};
    };
    SystemSampler sampler(*m_settings, m_machine.sources(), m_directory);
    timerOf(sampler).stop();
    const auto interest = sampler.lookAtProcesses();
    QTRY_COMPARE(sampler.processes().size(), std::size_t(1));
    QVERIFY(sampler.aiWorkloads().empty());
    closed.unlock();
    QTRY_COMPARE(sampler.aiWorkloads().size(), std::size_t(1));
}

void TestSystemSampler::dropsASurveyThatEndsAfterALaterOne()
{
    static std::mutex gate; // Jobs may outlive the test.
    std::unique_lock closed(gate);
    static std::atomic<int> begun = 0;
    static std::atomic<int> ended = 0;
    m_machine.survey.take = [&](const RankingReport &) {
        const int number = ++begun;
        if (number == 1)
            const std::lock_guard wait(gate);
        ++ended;
        return Survey{.processes = {{.id = number}}, .workloads = {{.id = number}}};
    };
    SystemSampler sampler(*m_settings, m_machine.sources(), m_directory);
    timerOf(sampler).stop();
    const auto interest = sampler.lookAtProcesses();
    QTRY_COMPARE(begun.load(), 1);
    for (int tick = 2; tick <= 3; ++tick)
        sampler.tick();
    QTRY_COMPARE(sampler.aiWorkloads().size(), std::size_t(1));
    closed.unlock();
    QTRY_COMPARE(ended.load(), 2);
    for (int tick = 4; tick <= 6; ++tick) // The delivery of the third follows that of the first.
        sampler.tick();
    const QSignalSpy published(&sampler, &SystemSampler::processesChanged);
    QTRY_COMPARE(sampler.processes().at(0).id, 3);
    QCOMPARE(sampler.aiWorkloads().at(0).id, 3);
    QCOMPARE(published.count(), 1);
}

void TestSystemSampler::emptiesListsOfWhichNoSurveyEnds()
{
    static std::mutex gate; // Jobs may outlive the test.
    std::unique_lock closed(gate, std::defer_lock);
    m_machine.survey.take = [](const RankingReport &) {
        const std::lock_guard wait(gate);
        return Survey{.processes = {{.id = 7}}, .workloads = {{.id = 7}}, .gpuHolders = {{}}};
    };
    SystemSampler sampler(*m_settings, m_machine.sources(), m_directory);
    timerOf(sampler).stop();
    const auto interest = sampler.lookAtProcesses();
    QTRY_COMPARE(sampler.aiWorkloads().size(), std::size_t(1));
    closed.lock();
    for (int tick = 2; tick <= 13; ++tick)
        sampler.tick();
    QCOMPARE(sampler.processes().size(), std::size_t(1));
    QCOMPARE(sampler.aiWorkloads().size(), std::size_t(1));
    const QSignalSpy processes(&sampler, &SystemSampler::processesChanged);
    const QSignalSpy workloads(&sampler, &SystemSampler::aiWorkloadsChanged);
    for (int tick = 14; tick <= 20; ++tick)
        sampler.tick();
    QVERIFY(sampler.processes().empty());
    QVERIFY(sampler.aiWorkloads().empty());
    QVERIFY(sampler.gpuHolders().empty());
    QCOMPARE(processes.count(), 1);
    QCOMPARE(workloads.count(), 1);
    closed.unlock();
    QTRY_COMPARE(sampler.processes().size(), std::size_t(1)); // The last one that was begun.
}

void TestSystemSampler::aSurveyMayOutliveTheSampler()
{
    struct Gate {
        std::mutex mutex;
        std::atomic<bool> done = false;
    };
    const auto gate = std::make_shared<Gate>();
    std::unique_lock closed(gate->mutex);
    m_machine.survey.take = [gate](const RankingReport &) {
        const std::lock_guard wait(gate->mutex);
        gate->done = true;
        return Survey{.processes = {{.id = 1}}};
    };
    {
        SystemSampler sampler(*m_settings, m_machine.sources(), m_directory);
        const auto interest = sampler.lookAtProcesses();
        sampler.tick();
        sampler.tick();
    }
    closed.unlock();
    QTRY_VERIFY(gate->done);
    QCoreApplication::processEvents(); // The result has no receiver.
}

void TestSystemSampler::trimsOnEverySixtiethTick()
{
    fillHistory(m_directory, 300);
    {
        SystemSampler sampler(*m_settings, m_machine.sources(), m_directory); // Tick 1.
        for (int tick = 2; tick <= 59; ++tick)
            sampler.tick();
    }
    QCOMPARE(linesIn(m_directory), 300 + 59);
    {
        SystemSampler sampler(*m_settings, m_machine.sources(), m_directory);
        for (int tick = 2; tick <= 61; ++tick)
            sampler.tick();
    }
    QCOMPARE(linesIn(m_directory), 120 + 1);
}

void TestSystemSampler::settingTheSameWindowAgainChangesNothing()
{
    SystemSampler sampler(*m_settings, m_machine.sources(), m_directory);
    timerOf(sampler).stop();
    for (int i = 0; i < 9; ++i)
        sampler.tick();
    const auto before = sampler.history();
    QSignalSpy changed(&sampler, &SystemSampler::historyChanged);
    m_settings->setHistoryWindow(HistoryWindow::oneMin);
    QCOMPARE(changed.count(), 0); // Only after the code that writes the setting.
    QCoreApplication::processEvents();
    QCOMPARE(changed.count(), 1);
    QCOMPARE(sampler.history().size(), before.size());
    for (std::size_t i = 0; i < before.size(); ++i)
        QCOMPARE(sampler.history()[i].id, before[i].id);
}

void TestSystemSampler::historyFitsANewWindow_data()
{
    QTest::addColumn<int>("held");
    QTest::addColumn<int>("window");
    QTest::addColumn<int>("inFile");
    QTest::addColumn<int>("expected");
    QTest::addColumn<bool>("fromFile");
    QTest::newRow("a shorter window keeps the newest") << 60 << 30 << 200 << 30 << false;
    QTest::newRow("the same window keeps what is held") << 60 << 60 << 200 << 60 << false;
    QTest::newRow("a longer window takes more from the file") << 60 << 300 << 200 << 200 << true;
    QTest::newRow("a longer window with less in the file") << 60 << 300 << 40 << 60 << false;
    QTest::newRow("a longer window with as much in the file") << 60 << 300 << 60 << 60 << false;
    QTest::newRow("an empty history and an empty file") << 0 << 60 << 0 << 0 << false;
    QTest::newRow("an empty history and some in the file") << 0 << 60 << 10 << 10 << true;
}

void TestSystemSampler::historyFitsANewWindow()
{
    QFETCH(int, held);
    QFETCH(int, window);
    QFETCH(int, inFile);
    QFETCH(bool, fromFile);
    const auto before = samples(held);
    const auto file = samples(qMin(inFile, window)); // A load returns at most as many as requested.
    qint64 requested = -1;
    const auto after = historyAfterWindowChange(before, window, [&](qint64 count) {
        requested = count;
        return file;
    });
    QTEST(int(after.size()), "expected");
    QCOMPARE(requested, window < held ? -1 : window);
    if (!after.empty())
        QCOMPARE(after.back().id, fromFile ? file.back().id : before.back().id);
}

QTEST_GUILESS_MAIN(TestSystemSampler)
#include "tst_SystemSampler.moc"
