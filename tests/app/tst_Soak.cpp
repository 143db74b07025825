#include "app/MainWindow.h"
#include "app/MenuBarContent.h"
#include "app/SoakMachine.h"
#include "charts/Sparkline.h"
#include "sampling/MemoryCounters.h"
#include "sampling/SystemSampler.h"
#include "support/ProcessState.h"

#include <QApplication>
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

namespace {

constexpr int ticksOfADay = 86'400;
constexpr int uses = 6;

/// What must not grow.
struct Holding {
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

/// Without those that Qt keeps for a while to draw with.
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

/// How much a quantity grew over the later half of the measurements, by the line of least squares.
double grown(const std::vector<Holding> &all, qint64 Holding::*quantity)
{
    const std::vector<Holding> late(all.begin() + std::ptrdiff_t(all.size() / 2), all.end());
    const auto count = static_cast<double>(late.size());
    double sumY = 0;
    for (const Holding &one : late)
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

bool isWithin(double value, double most)
{
    return value >= 0 && value <= most + 0.01;
}

bool isWithin(std::optional<double> degrees)
{
    return !degrees || isWithin(*degrees, SoakMachine::mostDegrees);
}

/// Nothing that the machine did not do.
bool isTrue(const ChipReading &chip)
{
    return isWithin(chip.cpuWatts, SoakMachine::mostCPUWatts)
        && isWithin(chip.gpuWatts, SoakMachine::mostGPUWatts) && isWithin(chip.cpuActiveFraction, 1)
        && isWithin(chip.gpuActiveFraction, 1) && isWithin(chip.cpuTempC) && isWithin(chip.gpuTempC)
        && std::ranges::all_of(chip.cpuCoreUtilizations,
                               [](double load) { return isWithin(load, 1); });
}

/// Lines run from left to right and stay on the chart.
bool isDrawable(const Sparkline &chart)
{
    const QRectF room = QRectF(chart.rect()).adjusted(-1, -1, 1, 1);
    for (const SeriesShape &shape : seriesShapes(chart.shown(), chart.size())) {
        for (qsizetype i = 0; i < shape.line.size(); ++i) {
            if (!room.contains(shape.line[i])
                || (i > 0 && shape.line[i].x() < shape.line[i - 1].x()))
                return false;
        }
    }
    return true;
}

} // namespace

/// The sampler, the panel and the dashboard over a day in the life of a restless machine, each
/// second a tick, as fast as they come.
class TestSoak : public QObject {
    Q_OBJECT

public:
    explicit TestSoak(int ticks, int seed) : m_ticks(ticks), m_random(static_cast<unsigned>(seed))
    {
    }

private slots:
    void initTestCase();
    void staysAsItIs();

private:
    int random(int from, int to) { return std::uniform_int_distribution(from, to)(m_random); }
    void openWindow();
    void warmUp();
    void use(int what);
    void tick();
    void settle();
    Holding holding() const;

    const int m_ticks;
    std::mt19937 m_random;
    QTemporaryDir m_folder;
    std::unique_ptr<SoakMachine> m_machine;
    std::unique_ptr<AppSettings> m_settings;
    std::unique_ptr<SystemSampler> m_sampler;
    std::unique_ptr<MenuBarContent> m_panel;
    QPointer<MainWindow> m_window;
    qsizetype m_threads = 0;
    int m_samples = 0; ///< Announced so far.
};

void TestSoak::initTestCase()
{
    QCoreApplication::setOrganizationName(u"Corvane"_s);
    QCoreApplication::setApplicationName(u"Corvane"_s);
    m_machine = std::make_unique<SoakMachine>(m_random());
    m_settings = std::make_unique<AppSettings>();
    const auto memory = std::make_shared<MemoryCountersReader>(m_machine->root());
    m_sampler = std::make_unique<SystemSampler>(
        *m_settings,
        SamplerSources{.memory = [memory] { return MemorySampler::snapshot(memory->read()); },
                       .chip = openChipSource(m_machine->root()),
                       .survey = [root = m_machine->root()] { return surveyBelow(root); },
                       .now = [this] { return m_machine->now(); }},
        m_folder.path());
    m_sampler->findChild<QTimer *>()->stop();
    m_panel = std::make_unique<MenuBarContent>();
    connect(m_sampler.get(), &SystemSampler::currentChanged, this, [this] {
        ++m_samples;
        m_panel->show(m_sampler->current());
    });
    openWindow();
    m_threads = threads(); // No look at the processes yet.
}

/// As the application connects them.
void TestSoak::openWindow()
{
    m_window = new MainWindow(nullptr, {.name = u"A restless machine"_s});
    m_window->setAttribute(Qt::WA_DeleteOnClose);
    connect(m_sampler.get(), &SystemSampler::historyChanged, m_window,
            [this] { m_window->show(m_sampler->current(), m_sampler->history()); });
    connect(m_sampler.get(), &SystemSampler::processesChanged, m_window,
            [this] { m_window->showProcesses(m_sampler->processes()); });
    connect(m_sampler.get(), &SystemSampler::aiWorkloadsChanged, m_window,
            [this] { m_window->showWorkloads(m_sampler->aiWorkloads()); });
    m_window->QWidget::show();
}

/// Everything once or twice, so that what is made at its first use is there.
void TestSoak::warmUp()
{
    for (int what = 0; what < 2 * uses; ++what) {
        use(what % uses);
        for (int second = 0; second < 20; ++second) {
            m_machine->live();
            tick();
            QCoreApplication::processEvents();
        }
    }
}

/// What a user does now and then.
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
        m_settings->setHistoryWindow(HistoryWindow::oneMin);
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
    QVERIFY(current.memory.total > 0 && current.memory.used <= current.memory.total);
    QVERIFY(current.chip);
    QVERIFY(isTrue(*current.chip));
    QVERIFY(m_sampler->history().size() <= 60);
    QCOMPARE(m_sampler->history().back().id, current.id);
}

/// A minute at rest, after which all that was plugged in is found and read: every measurement finds
/// the same in memory.
void TestSoak::settle()
{
    m_panel->hide();
    m_window->setWindowState(Qt::WindowNoState);
    m_window->resize(1280, 900);
    for (int second = 0; second < 62; ++second) {
        m_machine->rest();
        tick();
        if (second % 10 == 0)
            QCoreApplication::processEvents();
    }
    // A look at the processes may take a while.
    QTRY_COMPARE_WITH_TIMEOUT(threads(), m_threads, 60'000);
    QCoreApplication::processEvents();
}

Holding TestSoak::holding() const
{
    return {.heap = heapInUse(),
            .resident = residentBytes(),
            .descriptors = openDescriptors(),
            .threads = threads(),
            .historyBytes = QFile(m_folder.filePath(u"history.jsonl"_s)).size()};
}

void TestSoak::staysAsItIs()
{
    constexpr int measurements = 16;
    constexpr int ticksAPaint = 10;
    constexpr int ticksAUse = 100;
    std::vector<Holding> all;
    warmUp();
    for (int tickNumber = 1; tickNumber <= m_ticks; ++tickNumber) {
        m_machine->live();
        tick();
        if (tickNumber % ticksAUse == 0)
            use(random(0, uses - 1));
        if (tickNumber % ticksAPaint == 0) {
            QCoreApplication::processEvents(); // Deliveries and repaints.
            for (const Sparkline *chart : m_window->findChildren<Sparkline *>())
                QVERIFY(isDrawable(*chart));
        }
        if (tickNumber % (m_ticks / measurements) == 0) {
            settle();
            all.push_back(holding());
            qInfo("tick %d: heap %lld KiB, memory %lld KiB", tickNumber, all.back().heap / 1024,
                  all.back().resident / 1024);
        }
        if (QTest::currentTestFailed())
            return;
    }
    const double heap = grown(all, &Holding::heap);
    const double resident = grown(all, &Holding::resident);
    qInfo("%d ticks, %d sleeps, %d jumps of the clock, %d plugged; in the later half the heap grew "
          "by "
          "%.0f KiB to %lld KiB, memory by %.0f KiB to %lld KiB; %lld descriptors, history of %lld "
          "bytes",
          m_ticks, m_machine->sleeps(), m_machine->clockJumps(), m_machine->plugged(), heap / 1024,
          all.back().heap / 1024, resident / 1024, all.back().resident / 1024,
          static_cast<long long>(all.back().descriptors), all.back().historyBytes);
    QVERIFY(heap < 64 * 1024);
    // What threads leave behind goes up and down by megabytes. A sanitizer does not tell of the
    // heap, and keeps what was freed.
    QVERIFY(resident < 12 * 1024 * 1024 || all.back().heap == 0);
    for (const Holding &one : all) {
        QCOMPARE(one.descriptors, all.front().descriptors);
        QCOMPARE(one.threads, all.front().threads);
        QVERIFY(one.historyBytes < 60'000);
    }
}

/// "--ticks N" and "--seed N", or else a short while.
int main(int argc, char **argv)
{
    qputenv("QTEST_FUNCTION_TIMEOUT", "86400000");  // A whole day takes a while.
    qputenv("QT_LOGGING_RULES", "*.warning=false"); // What a platform without a display lacks.
    const QApplication application(argc, argv);
    QStringList arguments = QCoreApplication::arguments();
    const auto take = [&arguments](const QString &name, int usual) {
        const qsizetype place = arguments.indexOf(name);
        if (place < 0 || place + 1 >= arguments.size())
            return usual;
        const int value = arguments[place + 1].toInt();
        arguments.remove(place, 2);
        return value;
    };
    const int ticks = take(u"--ticks"_s, ticksOfADay / 40);
    const int seed = take(u"--seed"_s, 1);
    TestSoak test(ticks, seed);
    return QTest::qExec(&test, arguments);
}

#include "tst_Soak.moc"
