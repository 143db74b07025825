#include "app/AboutPanel.h"
#include "app/Commands.h"
#include "app/SoakMachine.h"
#include "charts/Sparkline.h"
#include "chip/ChipSource_linux.h"
#include "dashboard/MainWindow.h"
#include "devices/PowerCard.h"
#include "figures/MetricsFile.h"
#include "login/LaunchAtLoginManager.h"
#include "memory/MemoryFiles_linux.h"
#include "panel/MenuBarContent.h"
#include "processes/ProcessSource_linux.h"
#include "processes/Surveyor.h"
#include "sampler/SystemSampler.h"
#include "settings/SettingsWindow.h"
#include "support/FakeTray.h"
#include "support/PrivateBus.h"
#include "support/ProcessState.h"
#include "support/Waiting.h"
#include "tray/TrayLabel.h"
#include "tray/TrayPicture.h"
#include "updates/UpdaterManager.h"

#include <QApplication>
#include <QDBusVariant>
#include <QDir>
#include <QFile>
#include <QPointer>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <memory>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr int ticksOfADay = 86'400;
constexpr int uses = 8;
constexpr int longestWindow = 180; ///< Seconds.
constexpr int busThreads = 1;      ///< Threads of the bus library.
/// Quantities that must not grow.
struct Resources {
    qint64 heap = 0;
    qint64 resident = 0;
    qsizetype descriptors = 0;
    qsizetype threads = 0;
    qint64 historyBytes = 0;
};

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The number of threads, without those that Qt keeps for a while for drawing.
qsizetype threads()
{
    const QString tasks = u"/proc/self/task/"_s;
    const QStringList all = QDir(tasks).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    return std::ranges::count_if(all, [&tasks](const QString &task) {
        return !contents(tasks + task + "/comm"_L1).startsWith("Thread (pooled");
    });
}

qint64 residentBytes()
{
    constexpr qint64 pageSize = 4096;
    return contents(u"/proc/self/statm"_s).split(' ').value(1).toLongLong() * pageSize;
}

/// The growth of a quantity over the later half of the measurements, by the line of least squares.
double growth(const std::vector<Resources> &all, qint64 Resources::*quantity)
{
    const std::vector<Resources> late(all.begin() + std::ptrdiff_t(all.size() / 2), all.end());
    const auto count = static_cast<double>(late.size());
    double sumY = 0;
    for (const Resources &one : late)
        sumY += static_cast<double>(one.*quantity);
    double products = 0;
    double squares = 0;
    for (std::size_t i = 0; i < late.size(); ++i) {
        const double x = static_cast<double>(i) - (count - 1) / 2;
        products += x * (static_cast<double>(late[i].*quantity) - sumY / count);
        squares += x * x;
    }
    return products / squares * (count - 1);
}

/// False also for NaN.
bool isWithin(double value, double lowest, double highest)
{
    constexpr double rounding = 0.01;
    return value >= lowest - rounding && value <= highest + rounding;
}

bool isWithin(const std::optional<double> &degrees)
{
    return !degrees || isWithin(*degrees, 30, SoakMachine::mostDegrees);
}

/// Whether the reading is possible on this machine, which has no Neural Engine.
bool isPlausible(const ChipReading &chip, double cpuWatts)
{
    const auto isShare = [](double share) { return isWithin(share, 0, 1); };
    return isWithin(chip.cpuWatts, cpuWatts, cpuWatts)
        && isWithin(chip.gpuWatts, 0, SoakMachine::mostGPUWatts) && chip.aneWatts == 0
        && isShare(chip.cpuActiveFraction) && isShare(chip.gpuActiveFraction)
        && isWithin(chip.cpuTempC) && isWithin(chip.gpuTempC) && !chip.aneTempC
        && isWithin(chip.packageTempC) && std::ranges::all_of(chip.cpuCoreUtilizations, isShare);
}

/// Whether the chart's data, which it has not yet clamped to its range, are possible.
bool isPlausible(const SparklineData &chart, double most)
{
    return std::ranges::all_of(chart.series, [&](const SparklineSeries &series) {
        return series.values.size() == chart.timestamps.size()
            && std::ranges::all_of(series.values, [most](const std::optional<double> &value) {
                   return !value || isWithin(*value, 0, most);
               });
    });
}

bool isPlausible(const MainWindow &window)
{
    constexpr double mostWatts = SoakMachine::mostCPUWatts + SoakMachine::mostGPUWatts;
    // The scale of power only grows: a single spike would remain visible.
    return std::ranges::all_of(window.findChildren<Sparkline *>(), [&](const Sparkline *chart) {
        const bool isPower = chart->shown().stacking == Stacking::stacked;
        return (!isPower || chart->shown().yDomain.upper <= powerScale(mostWatts))
            && isPlausible(chart->shown(), isPower ? mostWatts : 100);
    });
}

/// Whether there is a gap between two samples, from a sleep or a clock that was set forward.
bool hasGap(const std::vector<double> &timestamps)
{
    return std::ranges::adjacent_find(timestamps,
                                      [](double one, double next) { return next - one >= 60; })
        != timestamps.end();
}

/// Whether each line has exactly one point for each sample with a value, from left to right, and so
/// is straight across a gap in time.
bool isDrawnThroughItsSamples(const Sparkline &chart)
{
    const SparklineData &data = chart.shown();
    const auto leftOf = [](const QPointF &one, const QPointF &other) {
        return one.x() < other.x();
    };
    const auto shapes = seriesShapes(data, chart.size());
    std::vector<std::ptrdiff_t> points(data.series.size());
    for (const SeriesShape &shape : shapes) {
        if (!std::ranges::is_sorted(shape.line, leftOf))
            return false;
        points[shape.series] += shape.line.size();
    }
    for (std::size_t i = 0; i < points.size(); ++i) {
        const auto isKnown = [](const std::optional<double> &value) { return value.has_value(); };
        if (points[i] < std::ranges::count_if(data.series[i].values, isKnown))
            return false;
    }
    return true;
}

/// Null while it is closed.
AboutPanel *aboutPanel()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (auto *panel = qobject_cast<AboutPanel *>(widget))
            return panel;
    }
    return nullptr;
}

} // namespace

/// The sampler, the windows and the label on a machine that changes all the time, over up to a day
/// of ticks without waiting between them.
class TestSoak : public QObject {
    Q_OBJECT

public:
    explicit TestSoak(int ticks, int seed) : m_ticks(ticks), m_random(static_cast<unsigned>(seed))
    {
    }

private slots:
    void initTestCase();
    void neitherSamplerNorWindowsGrow();
    void theLabelDoesNotGrow();

private:
    int random(int from, int to) { return std::uniform_int_distribution(from, to)(m_random); }
    void openWindow();
    void toggleSettings();
    void toggleAbout();
    void warmUp();
    void use(int what);
    void useLabel(int what);
    qsizetype labelSize() const;
    void tick();
    void checkCharts();
    void settle();
    Resources resources() const;
    void checkGrowth(const std::vector<Resources> &all) const;

    const int m_ticks;
    std::mt19937 m_random;
    QTemporaryDir m_folder;
    std::unique_ptr<SoakMachine> m_machine;
    std::unique_ptr<AppSettings> m_settings;
    std::unique_ptr<SystemSampler> m_sampler;
    std::unique_ptr<MenuBarContent> m_panel;
    std::unique_ptr<LaunchAtLoginManager> m_launch;
    std::unique_ptr<MetricsFile> m_metrics;
    std::unique_ptr<UpdaterManager> m_updater;
    ProcessInterest m_interest;
    QPointer<MainWindow> m_window;
    QPointer<SettingsWindow> m_settingsWindow;
    const Commands m_commands;
    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<FakeTray> m_tray;
    std::unique_ptr<TrayLabel> m_label;
    qsizetype m_threads = 0;
    int m_samples = 0;         ///< Emitted so far.
    quint64 m_usedAndFree = 0; ///< Bytes; constant.
    int m_gaps = 0;            ///< Charts that had a gap.
};

void TestSoak::initTestCase()
{
    QCoreApplication::setOrganizationName(u"Corvane"_s);
    QCoreApplication::setApplicationName(u"Corvane"_s);
    m_machine = std::make_unique<SoakMachine>(m_random());
    m_settings = std::make_unique<AppSettings>();
    const auto memory = std::make_shared<MemoryFiles>(m_machine->root());
    m_sampler = std::make_unique<SystemSampler>(
        *m_settings,
        SamplerSources{.memory = [memory] { return MemorySampler::snapshot(memory->read()); },
                       .chip = openChipSourceBelow(m_machine->root()),
                       .survey =
                           surveysOf(std::make_shared<Surveyor>(linuxProcesses(m_machine->root()))),
                       .now = [this] { return m_machine->now(); }},
        m_folder.path());
    m_sampler->findChild<QTimer *>()->stop();
    m_usedAndFree = m_sampler->current().memory.used + m_machine->freeBytes();
    m_panel = std::make_unique<MenuBarContent>();
    m_launch = std::make_unique<LaunchAtLoginManager>();
    m_metrics = std::make_unique<MetricsFile>(*m_sampler, u"Chip"_s);
    m_updater = std::make_unique<UpdaterManager>();
    connect(m_sampler.get(), &SystemSampler::currentChanged, this, [this] {
        ++m_samples;
        m_panel->show(m_sampler->current());
    });
    openWindow();
    m_threads = threads(); // No survey of the processes has begun.
}

/// As the application connects them.
void TestSoak::openWindow()
{
    m_window = new MainWindow(nullptr, {.name = u"A restless machine"_s});
    m_window->setAttribute(Qt::WA_DeleteOnClose);
    const auto showSamples = [this] { m_window->show(m_sampler->current(), m_sampler->history()); };
    const auto showProcesses = [this] { m_window->showProcesses(m_sampler->processes()); };
    const auto showWorkloads = [this] { m_window->showWorkloads(m_sampler->aiWorkloads()); };
    connect(m_sampler.get(), &SystemSampler::historyChanged, m_window, showSamples);
    connect(m_sampler.get(), &SystemSampler::processesChanged, m_window, showProcesses);
    connect(m_sampler.get(), &SystemSampler::aiWorkloadsChanged, m_window, showWorkloads);
    connect(m_window, &MainWindow::noLongerSeen, this, [this] { m_interest.reset(); });
    connect(m_window, &MainWindow::contentsNeeded, this, [=, this] {
        m_interest = m_sampler->lookAtProcesses();
        m_sampler->awaitSurvey();
        showSamples();
        showProcesses();
        showWorkloads();
    });
    m_window->QWidget::show();
}

void TestSoak::toggleSettings()
{
    if (m_settingsWindow) {
        m_settingsWindow->close();
        return;
    }
    m_settingsWindow = new SettingsWindow(*m_launch, *m_updater, *m_settings, *m_metrics);
    m_settingsWindow->setAttribute(Qt::WA_DeleteOnClose);
    m_settingsWindow->show();
    m_settingsWindow->showTab(random(0, 1) == 0 ? SettingsTab::general : SettingsTab::updates);
}

void TestSoak::toggleAbout()
{
    if (AboutPanel *panel = aboutPanel())
        panel->close();
    else
        showAboutPanel();
}

/// Uses everything once or twice, so that everything created at its first use exists.
void TestSoak::warmUp()
{
    m_settings->setHistoryWindow(static_cast<HistoryWindow>(longestWindow));
    for (int second = 0; second < longestWindow; ++second) {
        m_machine->live();
        tick();
        QCoreApplication::processEvents();
    }
    for (int what = 0; what < 2 * uses; ++what) {
        use(what % uses);
        for (int second = 0; second < 20; ++second) {
            m_machine->live();
            tick();
            QCoreApplication::processEvents();
        }
    }
}

/// An action of the user.
void TestSoak::use(int what)
{
    switch (what) {
    case 0:
        m_window->resize(random(920, 1800), random(700, 1200));
        break;
    case 1:
        m_window->setWindowState(m_window->windowState() ^ Qt::WindowMinimized);
        break;
    case 2:
        m_window->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        openWindow();
        break;
    case 3:
        m_panel->toggleAt({600, 20});
        break;
    case 4:
        // Of any length, not only of those that the user can choose.
        m_settings->setHistoryWindow(static_cast<HistoryWindow>(random(1, longestWindow)));
        break;
    case 5:
        toggleSettings();
        break;
    case 6:
        toggleAbout();
        break;
    default:
        QTest::mouseMove(m_window, {random(0, 900), random(0, 700)});
    }
}

void TestSoak::tick()
{
    const int before = m_samples;
    m_sampler->tick();
    const SystemMetrics &current = m_sampler->current();
    QCOMPARE(m_samples, before + 1);
    QCOMPARE(current.timestamp, m_machine->now());
    QCOMPARE(current.memory.free, m_machine->freeBytes());
    QCOMPARE(current.memory.used + current.memory.free, m_usedAndFree);
    QVERIFY(current.chip);
    QVERIFY(isPlausible(*current.chip, m_machine->cpuWatts()));
    QVERIFY(std::ssize(m_sampler->history()) <= seconds(m_settings->historyWindow()));
    QCOMPARE(m_sampler->history().back().id, current.id);
}

/// Checks the charts' data and lines.
void TestSoak::checkCharts()
{
    QVERIFY(isPlausible(*m_window));
    for (const Sparkline *chart : m_window->findChildren<Sparkline *>()) {
        const std::vector<double> &timestamps = chart->shown().timestamps;
        if (timestamps.size() < 2 || !std::ranges::is_sorted(timestamps))
            continue; // The clock was set back.
        QVERIFY(isDrawnThroughItsSamples(*chart));
        m_gaps += hasGap(timestamps) ? 1 : 0;
    }
}

/// A minute without changes, after which all devices are plugged in, found and read: the state is
/// the same at every measurement.
void TestSoak::settle()
{
    m_panel->hide();
    if (m_settingsWindow)
        toggleSettings();
    if (aboutPanel())
        toggleAbout();
    m_settings->setHistoryWindow(HistoryWindow::oneMin);
    m_window->setWindowState(Qt::WindowNoState);
    m_window->resize(1280, 900);
    for (int second = 0; second < 62; ++second) {
        m_machine->rest();
        tick();
        if (second % 10 == 0)
            QCoreApplication::processEvents();
    }
    // A survey of the processes may still run.
    TRY_COMPARE(threads(), m_threads);
    QCoreApplication::processEvents();
}

Resources TestSoak::resources() const
{
    return {.heap = heapInUse(),
            .resident = residentBytes(),
            .descriptors = openDescriptors(),
            .threads = threads(),
            .historyBytes = QFile(m_folder.filePath(u"history.jsonl"_s)).size()};
}

void TestSoak::neitherSamplerNorWindowsGrow()
{
    constexpr int measurements = 16;
    constexpr int ticksAPaint = 10;
    constexpr int ticksAUse = 100;
    std::vector<Resources> all;
    warmUp();
    for (int tickNumber = 1; tickNumber <= m_ticks; ++tickNumber) {
        m_machine->live();
        tick();
        if (tickNumber % ticksAUse == 0)
            use(random(0, uses - 1));
        if (tickNumber % ticksAPaint == 0) {
            QCoreApplication::processEvents(); // Deliveries and repaints.
            checkCharts();
        }
        if (tickNumber % (m_ticks / measurements) == 0) {
            settle();
            all.push_back(resources());
            qInfo("tick %d: heap %lld KiB, memory %lld KiB", tickNumber, all.back().heap / 1024,
                  all.back().resident / 1024);
        }
        if (QTest::currentTestFailed())
            return;
    }
    checkGrowth(all);

    const SoakMachine::Events &events = m_machine->events();
    qInfo(
        "%d ticks, %d sleeps, %d jumps of the clock forward, %d back; cores came or went %d times, "
        "cards %d, sensors %d; %d charts with a gap",
        m_ticks, events.sleeps, events.jumpsForward, events.jumpsBack, events.cores, events.cards,
        events.sensors, m_gaps);
    for (const int count : {events.sleeps, events.jumpsForward, events.jumpsBack, events.cores,
                            events.cards, events.sensors, m_gaps})
        QVERIFY2(count > 0, "something never happened");
}

/// Checks the later half of the measurements for leaks.
void TestSoak::checkGrowth(const std::vector<Resources> &all) const
{
    const double heap = growth(all, &Resources::heap);
    const double resident = growth(all, &Resources::resident);
    qInfo(
        "in the later half the heap grew by %.0f KiB to %lld KiB, memory by %.0f KiB to %lld KiB; "
        "%lld descriptors, history of %lld bytes",
        heap / 1024, all.back().heap / 1024, resident / 1024, all.back().resident / 1024,
        static_cast<long long>(all.back().descriptors), all.back().historyBytes);
    QVERIFY(heap < 64 * 1024);
    // The memory of ended threads varies by megabytes. A sanitizer does not report the heap and
    // keeps freed memory.
    QVERIFY(resident < 12 * 1024 * 1024 || all.back().heap == 0);
    for (const Resources &one : all) {
        QCOMPARE(one.descriptors, all.front().descriptors);
        QCOMPARE(one.threads, all.front().threads);
        QVERIFY(one.historyBytes < 60'000);
    }
}

/// How many numbers the label has on the machine as it is now.
qsizetype TestSoak::labelSize() const
{
    return std::ssize(labelNumbers(m_sampler->current()));
}

/// An action of the desktop or its user on the label.
void TestSoak::useLabel(int what)
{
    const QString item = m_tray ? m_tray->items().value(random(0, 1)) : QString();
    switch (what) {
    case 0:
        m_tray.reset();
        TRY_VERIFY(!m_label->isAvailable());
        m_tray = std::make_unique<FakeTray>(m_bus->address(), "lxqt-panel");
        TRY_COMPARE(m_tray->items().size(), labelSize());
        break;
    case 1:
        QVERIFY(m_tray->property(item, u"ToolTip"_s).isValid());
        QVERIFY(m_tray->property(item, u"IconPixmap"_s).isValid());
        break;
    default:
        for (const QString &event : {u"opened"_s, u"closed"_s}) {
            m_tray->call(item, u"/MenuBar"_s, QString::fromLatin1(FakeTray::menuInterface),
                         u"Event"_s, {0, event, QVariant::fromValue(QDBusVariant(0)), 0u});
            m_machine->live();
            tick();
        }
    }
}

/// Paints every number that the label can get, so that Qt's caches of glyphs, which grow for as
/// long as new ones come, are full before the measurements.
void fillGlyphCaches()
{
    MachineCoverage machine{.isWhole = false, .cpuWatts = Coverage::known};
    machine.gpus = {{.load = Coverage::known,
                     .watts = Coverage::known,
                     .memory = Coverage::known,
                     .memoryTotal = 100}};
    SystemMetrics sample{.memory = {.total = 100}, .chip = ChipReading{}};
    sample.chip->coverage = std::make_shared<const MachineCoverage>(machine);
    for (unsigned number = 0; number < 1000; ++number) {
        const unsigned percent = number % 101;
        sample.memory.used = percent;
        sample.chip->gpus = {
            {.activeFraction = percent / 100.0, .watts = double(number), .memoryUsed = percent}};
        const LabelNumbers numbers = labelNumbers(sample);
        for (std::size_t place = 0; place < numbers.size(); ++place) {
            for (const int pixels : trayPictureSizes())
                trayPicture(numbers[place], {place, numbers.size()}, pixels);
        }
    }
}

/// The label beside a tray that restarts now and then.
void TestSoak::theLabelDoesNotGrow()
{
    constexpr int measurements = 6;
    constexpr int ticksAUse = 20;
    const int ticks = std::max(m_ticks / 4, 360);
    fillGlyphCaches();
    m_bus = std::make_unique<PrivateBus>();
    QVERIFY(m_bus->start());
    m_label = std::make_unique<TrayLabel>(m_commands.inMenuOrder(), nullptr,
                                          TrayWaits{.tray = 50ms, .quiet = 10ms, .check = 50ms});
    connect(m_sampler.get(), &SystemSampler::currentChanged, m_label.get(),
            [this] { m_label->show(m_sampler->current()); });
    m_label->show(m_sampler->current());
    for (const int what : {0, 1, 2})
        useLabel(what);
    m_threads += busThreads;
    settle();
    const qsizetype descriptors = openDescriptors();

    std::vector<Resources> all;
    for (int tickNumber = 1; tickNumber <= ticks; ++tickNumber) {
        m_machine->live();
        tick();
        QCoreApplication::processEvents();
        if (tickNumber % ticksAUse == 0)
            useLabel(random(1, 2));
        if (tickNumber % (ticks / measurements) == 0) {
            useLabel(0);
            settle();
            TRY_COMPARE(openDescriptors(), descriptors);
            TRY_COMPARE(threads(), m_threads); // The wait may have let a background job begin.
            all.push_back(resources());
        }
        QVERIFY(m_label->isAvailable());
        TRY_COMPARE(m_tray->items().size(), labelSize()); // Cards come and go.
        if (QTest::currentTestFailed())
            return;
    }
    checkGrowth(all);
}

/// "--ticks N" sets the length, "--seed N" another course of events. The default is a short run.
int main(int argc, char **argv)
{
    qputenv("QTEST_FUNCTION_TIMEOUT", "86400000");  // Milliseconds; a day of ticks takes long.
    qputenv("QT_LOGGING_RULES", "*.warning=false"); // Of the offscreen platform.
    const QApplication application(argc, argv);
    QStringList arguments = QCoreApplication::arguments();
    const auto take = [&arguments](const QString &name, int byDefault) {
        const qsizetype place = arguments.indexOf(name);
        if (place < 0 || place + 1 >= arguments.size())
            return byDefault;
        const int value = arguments[place + 1].toInt();
        arguments.remove(place, 2);
        return value;
    };
    const int ticks = take(u"--ticks"_s, ticksOfADay / 240);
    const int seed = take(u"--seed"_s, 1);
    TestSoak test(ticks, seed);
    return QTest::qExec(&test, arguments);
}

#include "tst_Soak.moc"
