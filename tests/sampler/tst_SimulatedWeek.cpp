#include "records/ReferenceDate.h"
#include "sampler/SystemSampler.h"
#include "support/NumberArgument.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <random>

#include <ctime>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

/// What was sampled in a minute, summed plainly.
struct Sampled {
    int samples = 0;
    double memory = 0; ///< Sum of the used per cent.
    double joules = 0;
    double seconds = 0;
};

void setZone(const QByteArray &zone)
{
    qputenv("TZ", zone);
    tzset();
}

bool isNear(double sum, double plain)
{
    return std::abs(sum - plain) <= 1e-9 * std::max(1.0, std::abs(plain));
}

} // namespace

/// A program that samples for a week: it is killed and started again, sleeps, and its clock and
/// time zone are set. All times are multiples of a quarter of a second, so that plain sums are
/// exact.
class TestSimulatedWeek : public QObject {
    Q_OBJECT

public:
    explicit TestSimulatedWeek(bool isSecondBySecond) : m_isLong(isSecondBySecond) { }

private slots:
    void initTestCase();
    void keepsEachMinuteOnce();

private:
    void start();
    void kill();
    void step(double wall, double steady);
    void tick();
    void sleep(double seconds);
    void sampleFor(int ticks);
    void checkFile();
    void checkDays(const QByteArray &zone);
    void checkSizes();
    int number(int most) { return int(m_random() % unsigned(most)); }

    const bool m_isLong;
    std::mt19937 m_random{20'260'325};
    QTemporaryDir m_folder;
    std::unique_ptr<AppSettings> m_settings;
    std::unique_ptr<SystemSampler> m_sampler;
    double m_wall = 0;
    double m_steady = 1'000;
    std::optional<double> m_lastSteady = {}; ///< Of the running program.
    double m_watts = 0;
    quint64 m_used = 0;
    double m_watched = 0; ///< Samples since the clock was set.
    int m_kills = 0;
    std::map<qint64, Sampled> m_minutes;
};

void TestSimulatedWeek::initTestCase()
{
    QCoreApplication::setOrganizationName(u"Corvane"_s);
    QCoreApplication::setApplicationName(u"Corvane"_s);
    m_settings = std::make_unique<AppSettings>();
}

void TestSimulatedWeek::start()
{
    m_lastSteady.reset();
    m_sampler = std::make_unique<SystemSampler>(
        *m_settings,
        SamplerSources{.memory = [this] { return MemorySnapshot{.total = 1'024, .used = m_used}; },
                       .chip = [this] { return ChipReading{.cpuWatts = m_watts}; },
                       .survey = {},
                       .now = [this] { return m_wall; },
                       .steady = [this] { return m_steady; },
                       .diskPatience = std::chrono::minutes(1)},
        m_folder.path());
    m_sampler->findChild<QTimer *>()->stop();
    // A change of the window waits until the disk has delivered what it keeps.
    m_settings->setHistoryWindow(HistoryWindow::oneMin);
    QCoreApplication::processEvents();
    // Construction took a sample.
    const auto minute = qint64(std::floor(m_wall / 60));
    Sampled &sampled = m_minutes[minute];
    ++sampled.samples;
    sampled.memory += double(m_used) / 1'024 * 100;
    m_lastSteady = m_steady;
}

/// A kill leaves the same as a clean end, where nothing more is written, and may cut the last line.
void TestSimulatedWeek::kill()
{
    m_sampler.reset();
    ++m_kills;
    QFile minutes(m_folder.filePath(u"minutes.jsonl"_s));
    QVERIFY(minutes.open(QIODevice::ReadWrite));
    const bool isJustWritten = std::fmod(m_wall, 60) < 2;
    if (isJustWritten && minutes.size() > 500 && number(2) == 0)
        QVERIFY(minutes.resize(minutes.size() - 1 - number(10)));
}

void TestSimulatedWeek::step(double wall, double steady)
{
    m_wall += wall;
    m_steady += steady;
    m_watts = (number(4'000) + 1) / 8.0;
    m_used = quint64(number(1'024));
}

void TestSimulatedWeek::tick()
{
    Sampled &sampled = m_minutes[qint64(std::floor(m_wall / 60))];
    ++sampled.samples;
    sampled.memory += double(m_used) / 1'024 * 100;
    const double seconds = m_steady - m_lastSteady.value_or(m_steady);
    if (seconds > 0 && seconds <= 5) {
        sampled.joules += m_watts * seconds;
        sampled.seconds += seconds;
    }
    m_lastSteady = m_steady;
    ++m_watched;
    m_sampler->tick();
}

void TestSimulatedWeek::sampleFor(int ticks)
{
    const double length = m_isLong ? 1 : 5;
    for (int i = 0; i < ticks; ++i) {
        const double late = number(8) == 0 && !m_isLong ? -0.25 : 0; // The timer is coarse.
        step(length + late, length + late);
        tick();
    }
}

void TestSimulatedWeek::sleep(double seconds)
{
    step(seconds, number(2) == 0 ? seconds : 0.25); // Clocks differ in whether they run asleep.
}

void TestSimulatedWeek::keepsEachMinuteOnce()
{
    const std::array<QByteArray, 4> zones{"CET-1CEST,M3.5.0,M10.5.0/3", "EST5EDT,M3.2.0,M11.1.0",
                                          "<+0545>-5:45", "UTC0"};
    setZone(zones[0]);
    // The Wednesday before the clocks of Central Europe go forward in 2026.
    m_wall = 796'176'000;
    const double end = m_wall + 7 * 86'400.0;
    step(0, 0);
    start();
    for (int period = 0; m_wall < end; ++period) {
        sampleFor(m_isLong ? 1'000 + number(20'000) : 30 + number(150));
        // The other file does not keep the steady clock, so that of a minute in which the clock was
        // set the time of one sample may be lost by a kill.
        const int what = m_watched > 60 ? number(6) : 5;
        switch (what) {
        case 0:
        case 1:
            kill();
            step(number(3) == 0 ? 0.25 : number(4'000), 0.25);
            start();
            break;
        case 2:
            sleep(600 + number(30'000));
            tick();
            m_watched = 0;
            break;
        case 3:
            step(number(2) == 0 ? 7'200 : -1'800, 1); // The clock is set.
            tick();
            m_watched = 0;
            break;
        case 4:
            setZone(zones[std::size_t(number(4))]);
            break;
        default:
            sleep(m_isLong ? 60 : 4'000 + number(4'000));
            tick();
        }
        checkSizes();
    }
    QVERIFY(m_kills > (m_isLong ? 3 : 10));

    // The last minute ends, and a last start reads what is there. Both clocks run: the sample after
    // a sleep through which the steady one stood still has its time from that clock alone.
    step(120, 120);
    tick();
    m_sampler.reset();
    checkFile();
    step(0.25, 0.25);
    start();
    const auto hasLoaded = [this] {
        m_sampler->tick();
        return std::ranges::any_of(m_sampler->energy().days,
                                   [](const DayEnergy &day) { return day.energy.seconds > 0; });
    };
    QTRY_VERIFY(hasLoaded());
    for (const QByteArray &zone : zones)
        checkDays(zone);
}

/// Lines of one minute are the parts of one.
void TestSimulatedWeek::checkFile()
{
    QFile file(m_folder.filePath(u"minutes.jsonl"_s));
    QVERIFY(file.open(QIODevice::ReadOnly));
    std::map<qint64, MeanRecord> found;
    std::map<qint64, Energy> energy;
    double joules = 0;
    for (const QByteArray &line : file.readAll().split('\n')) {
        const auto minute = MinuteRecord::fromLine(line.toStdString());
        if (!minute)
            continue;
        const auto number = qint64(minute->means.start / 60);
        const auto [place, isNew] = found.try_emplace(number, minute->means);
        if (!isNew)
            place->second = merged(place->second, minute->means);
        energy[number] += minute->energy;
        joules += minute->energy.all;
    }
    const qint64 open = m_minutes.rbegin()->first;
    QVERIFY(!found.contains(qint64(std::floor(m_wall / 60))));
    double plain = 0;
    for (const auto &[number, sampled] : m_minutes) {
        if (number == qint64(std::floor(m_wall / 60)))
            continue;
        plain += sampled.joules;
        QVERIFY2(found.contains(number), qPrintable(QString::number(number - open)));
        const Mean &memory = found.at(number)[Measure::memory];
        QCOMPARE(int(memory.known), sampled.samples);
        QVERIFY(std::abs(double(memory.mean) - sampled.memory / sampled.samples) < 1e-3);
        QVERIFY2(isNear(energy[number].all, sampled.joules),
                 qPrintable(u"%1 J, not %2"_s.arg(energy[number].all).arg(sampled.joules)));
        QVERIFY(isNear(energy[number].seconds, sampled.seconds));
    }
    QVERIFY(isNear(joules, plain));
    QVERIFY(joules > 1'000'000);
}

/// The sums of the days, in whatever zone the user is by now.
void TestSimulatedWeek::checkDays(const QByteArray &zone)
{
    setZone(zone);
    std::map<QDate, double> plain;
    for (const auto &[number, sampled] : m_minutes)
        plain[localDateTime(double(number) * 60).date()] += sampled.joules;
    for (const DayEnergy &day : m_sampler->energy().days)
        QVERIFY2(isNear(day.energy.all, plain[day.date]), qPrintable(day.date.toString()));
}

void TestSimulatedWeek::checkSizes()
{
    QVERIFY(m_sampler->history().size() <= 60);
    m_settings->setHistoryWindow(HistoryWindow::oneDay);
    QVERIFY(m_sampler->chartHistory().means->records.size() <= 1'442);
    m_settings->setHistoryWindow(HistoryWindow::oneHour);
    QVERIFY(m_sampler->chartHistory().means->records.size() <= 362);
    const qint64 bytes = QFile(m_folder.filePath(u"minutes.jsonl"_s)).size();
    QVERIFY(bytes < 300 * qint64(MinuteFile::mostLines + 1'441));
}

/// "--second-by-second 1" samples every second.
int main(int argc, char **argv)
{
    const bool isLong = takeNumber("--second-by-second", 0, argc, argv) != 0;
    QCoreApplication application(argc, argv);
    TestSimulatedWeek test(isLong);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_SimulatedWeek.moc"
