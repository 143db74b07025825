#include "memory/MemoryCounters.h"
#include "processes/Survey.h"
#include "sampler/SystemSampler.h"
#include "support/FaultyCalls.h"
#include "support/MachineTree.h"
#include "support/SteppedClock.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QStorageInfo>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <filesystem>
#include <functional>
#include <random>

#include <cerrno>
#include <sys/stat.h>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;
using FaultyCalls::Call;

namespace {

namespace fs = std::filesystem;

/// Done to one file or folder of the machine.
struct Mutilation {
    std::function<void(const fs::path &)> damage = {};
    bool inPlace = false; ///< Readers that have the file open see it.
};

} // namespace

Q_DECLARE_METATYPE(Mutilation)
Q_DECLARE_METATYPE(corvane::test::FaultyCalls::Call)

namespace {

void writeText(const fs::path &path, const QByteArray &text)
{
    QFile file(QString::fromStdString(path.string()));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(text) != text.size())
        qFatal("not written");
}

QByteArray textOf(const fs::path &path)
{
    QFile file(QString::fromStdString(path.string()));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

Mutilation filledWith(const QByteArray &text)
{
    return {.damage = [text](const fs::path &path) { writeText(path, text); }, .inPlace = true};
}

template <typename Make>
Mutilation replacedBy(Make make)
{
    return {.damage = [make](const fs::path &path) {
        fs::remove_all(path);
        make(path);
    }};
}

constexpr auto recursively = fs::copy_options::recursive | fs::copy_options::copy_symlinks;

void restore(const fs::path &path, const fs::path &kept, bool inPlace)
{
    if (inPlace) {
        writeText(path, textOf(kept));
        return;
    }
    fs::remove_all(path);
    fs::copy(kept, path, recursively);
}

constexpr std::size_t oneByOne = 0;
constexpr std::size_t someGroups = 4; ///< So that what reads several files meets several.

/// A desktop, laptop or board with memory, three processes and all that its tree tells.
class WholeMachine {
public:
    explicit WholeMachine(const std::string &name) : m_tree(name)
    {
        const MachineTree memory("laptop-hybrid-zram");
        fs::copy(memory.root() + "/proc", root() + "/proc",
                 fs::copy_options::recursive | fs::copy_options::skip_existing);
        for (const int pid : {101, 202, 303}) {
            const std::string folder = "proc/" + std::to_string(pid);
            m_tree.write(folder + "/statm", "90000 70000 1000 1 0 69000 0\n");
            m_tree.write(folder + "/comm", "python3\n");
            m_tree.write(folder + "/status", "Name:\tpython3\nVmSwap:\t    4096 kB\n");
            m_tree.write(folder + "/cmdline", std::string("python3\0-m\0vllm\0--model\0a/b\0", 27));
        }
    }

    std::string root() const { return m_tree.root(); }

    /// All of its files or folders, links left out, in so many groups or one by one.
    std::vector<std::vector<fs::path>> groups(bool folders, std::size_t count) const
    {
        std::vector<fs::path> found;
        for (const fs::directory_entry &entry : fs::recursive_directory_iterator(root())) {
            if (!entry.is_symlink() && entry.is_directory() == folders)
                found.push_back(entry.path());
        }
        std::ranges::sort(found);
        std::ranges::shuffle(found, std::mt19937(1));
        if (count == oneByOne)
            count = found.size();
        std::vector<std::vector<fs::path>> groups(count);
        for (std::size_t place = 0; place < found.size(); ++place)
            groups[place % count].push_back(found[place]);
        for (auto &group : groups)
            std::ranges::sort(group); // A folder before what is in it.
        return groups;
    }

    SamplerSources sources() const
    {
        const auto memory = std::make_shared<MemoryCountersReader>(root());
        return {.memory = [memory] { return MemorySampler::snapshot(memory->read()); },
                .chip = openChipSource(root()),
                .survey = {},
                .now = secondsSinceBoot};
    }

private:
    MachineTree m_tree;
};

bool isFraction(double value)
{
    return value >= 0 && value <= 1;
}

bool isTemperature(std::optional<double> value)
{
    return !value || (*value > 0 && *value < 200);
}

bool isSound(const ChipReading &chip)
{
    return isFraction(chip.cpuActiveFraction) && isFraction(chip.gpuActiveFraction)
        && std::ranges::all_of(chip.cpuCoreUtilizations, isFraction)
        && std::isfinite(totalWatts(chip)) && totalWatts(chip) >= 0 && totalWatts(chip) < 1e6
        && std::isfinite(chip.cpuActiveMHz) && isTemperature(chip.cpuTempC)
        && isTemperature(chip.gpuTempC) && isTemperature(chip.packageTempC);
}

bool isSound(const SystemMetrics &sample)
{
    return sample.memory.used <= sample.memory.total && (!sample.chip || isSound(*sample.chip));
}

/// What has to be there again when the machine is whole again.
QString described(const SystemMetrics &sample)
{
    const ChipReading chip = sample.chip.value_or(ChipReading());
    QString text =
        u"memory %1 cores %2"_s.arg(sample.memory.total).arg(chip.cpuCoreUtilizations.size());
    for (const auto degrees : {chip.cpuTempC, chip.gpuTempC, chip.packageTempC})
        text += u" %1"_s.arg(degrees.value_or(-1));
    return text + u" %1 %2"_s.arg(chip.gpuActiveFraction).arg(chip.cpuActiveMHz);
}

} // namespace

/// The sampler on machines whose files or folders are damaged, put in place of something else or
/// refused, one after the other and many at once: it goes on, tells nothing that cannot be, and
/// tells all again afterwards.
class TestDamagedMachine : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void outlivesDamage_data();
    void outlivesDamage();
    void outlivesRefusedCalls_data();
    void outlivesRefusedCalls();
    void noTickWaitsForADiskThatStalls_data();
    void noTickWaitsForADiskThatStalls();

private:
    QString ticks(SystemSampler &sampler, const std::string &root);

    QTemporaryDir m_history;
    AppSettings m_settings;
};

void TestDamagedMachine::initTestCase()
{
    QCoreApplication::setOrganizationName(u"Corvane"_s);
    QCoreApplication::setApplicationName(u"Corvane"_s);
}

void TestDamagedMachine::cleanup()
{
    FaultyCalls::clear();
}

/// Two ticks, so long after the last that all is looked for anew, and a survey. What they told;
/// empty if it cannot be.
QString TestDamagedMachine::ticks(SystemSampler &sampler, const std::string &root)
{
    SteppedClock::pass(61);
    sampler.tick();
    const bool wasSound = isSound(sampler.current());
    SteppedClock::pass(1);
    const double before = sampler.current().timestamp;
    sampler.tick();
    const Survey survey = surveyBelow(root);
    const bool goesOn = sampler.current().timestamp > before;
    if (!wasSound || !goesOn || !isSound(sampler.current()) || survey.processes.size() > 3)
        return {};
    return described(sampler.current());
}

void TestDamagedMachine::outlivesDamage_data()
{
    QTest::addColumn<QByteArray>("machine");
    QTest::addColumn<bool>("folders");
    QTest::addColumn<std::size_t>("groups");
    QTest::addColumn<Mutilation>("mutilation");
    const auto addFor = [](const char *name, bool folders, std::size_t groups,
                           const Mutilation &mutilation) {
        for (const char *machine :
             {"amd-desktop", "amd-apu-laptop", "intel-hybrid-nvidia", "arm-board-chip"})
            QTest::addRow("%s: %s", machine, name)
                << QByteArray(machine) << folders << groups << mutilation;
    };
    const auto add = [&](const char *name, bool folders, const Mutilation &mutilation) {
        addFor(name, folders, someGroups, mutilation);
    };
    const Mutilation gone = replacedBy([](const fs::path &) {});
    const Mutilation garbage = filledWith("\xff\x00\xfe cpu9999999999 \xc3\x28\n\n"_ba);
    addFor("one file after the other vanishes", false, oneByOne, gone);
    addFor("one file after the other holds garbage", false, oneByOne, garbage);
    addFor("one folder after the other vanishes", true, oneByOne, gone);
    add("files vanish", false, gone);
    add("files are empty", false, filledWith({}));
    add("files are cut", false,
        {.damage =
             [](const fs::path &path) {
                 const QByteArray text = textOf(path);
                 writeText(path, text.first(text.size() / 2));
             },
         .inPlace = true});
    add("files hold garbage", false, garbage);
    add("files hold a huge number", false, filledWith("99999999999999999999999999\n"_ba));
    add("files hold a negative number", false, filledWith("-9223372036854775808\n"_ba));
    add("files hold no number", false, filledWith("nan\n"_ba));
    add("files have grown to a megabyte", false, filledWith(QByteArray(1 << 20, '7')));
    add("files are folders", false,
        replacedBy([](const fs::path &path) { fs::create_directory(path); }));
    add("files are FIFOs", false, replacedBy([](const fs::path &path) {
            if (mkfifo(path.c_str(), 0600) != 0)
                qFatal("no FIFO");
        }));
    const auto loop =
        replacedBy([](const fs::path &path) { fs::create_symlink(path.filename(), path); });
    add("files are loops of links", false, loop);
    add("folders vanish", true, gone);
    add("folders are files", true, replacedBy(filledWith("0\n"_ba).damage));
    add("folders are loops of links", true, loop);
}

void TestDamagedMachine::outlivesDamage()
{
    QFETCH(const QByteArray, machine);
    QFETCH(const bool, folders);
    QFETCH(const std::size_t, groups);
    QFETCH(const Mutilation, mutilation);
    const WholeMachine whole(machine.toStdString());
    const QTemporaryDir keptFolder;
    const fs::path kept = keptFolder.path().toStdString();
    fs::copy(whole.root(), kept, recursively);
    SystemSampler sampler(m_settings, whole.sources(), m_history.path());
    const QString before = ticks(sampler, whole.root());
    QVERIFY(!before.isEmpty());

    for (const auto &group : whole.groups(folders, groups)) {
        for (const fs::path &path : group) {
            std::error_code gone; // Or its folder is.
            if (fs::exists(path, gone))
                mutilation.damage(path);
        }
        QVERIFY(!ticks(sampler, whole.root()).isEmpty());
        // A start with the damage, too.
        SystemSampler late(m_settings, whole.sources(), m_history.path());
        QVERIFY(!ticks(late, whole.root()).isEmpty());
        for (const fs::path &path : group)
            restore(path, kept / path.lexically_relative(whole.root()), mutilation.inPlace);
    }
    QCOMPARE(ticks(sampler, whole.root()), before);
    QCOMPARE(surveyBelow(whole.root()).processes.size(), std::size_t(3));
}

void TestDamagedMachine::outlivesRefusedCalls_data()
{
    QTest::addColumn<bool>("opening");
    QTest::addColumn<int>("error");
    QTest::newRow("reads fail") << false << EIO;
    QTest::newRow("the device is gone") << false << ENODEV;
    QTest::newRow("reads are interrupted") << false << EINTR;
    QTest::newRow("the driver is busy") << false << EAGAIN;
    QTest::newRow("no descriptors are left") << true << EMFILE;
    QTest::newRow("files are closed to this user") << true << EACCES;
}

void TestDamagedMachine::outlivesRefusedCalls()
{
    QFETCH(const bool, opening);
    QFETCH(const int, error);
    const WholeMachine whole("amd-desktop");
    SystemSampler sampler(m_settings, whole.sources(), m_history.path());
    const QString before = ticks(sampler, whole.root());
    QVERIFY(!before.isEmpty());

    const Call call = opening ? Call::open : Call::read;
    auto groups = whole.groups(false, someGroups);
    if (error != EINTR)
        groups.push_back({fs::path()}); // All files; reads that were interrupted are tried again.
    for (const auto &group : groups) {
        for (const fs::path &path : group)
            FaultyCalls::fail(call, path.string(), error,
                              error == EINTR ? 5 : FaultyCalls::forEver);
        QVERIFY(!ticks(sampler, whole.root()).isEmpty());
        SystemSampler late(m_settings, whole.sources(), m_history.path());
        QVERIFY(!ticks(late, whole.root()).isEmpty());
        FaultyCalls::clear();
    }
    QCOMPARE(ticks(sampler, whole.root()), before);
    QCOMPARE(surveyBelow(whole.root()).processes.size(), std::size_t(3));
}

void TestDamagedMachine::noTickWaitsForADiskThatStalls_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<QByteArray>("file");
    QTest::newRow("in opening the history") << Call::open << "/history.jsonl"_ba;
    QTest::newRow("in writing a record") << Call::write << "/history.jsonl"_ba;
    QTest::newRow("in reading it to cut it") << Call::read << "/history.jsonl"_ba;
    QTest::newRow("in flushing the cut one") << Call::sync << "/history.jsonl.new"_ba;
}

void TestDamagedMachine::noTickWaitsForADiskThatStalls()
{
    QFETCH(const Call, call);
    QFETCH(const QByteArray, file);
    constexpr int ticks = 300;
    const QTemporaryDir history;
    const WholeMachine whole("amd-desktop");
    {
        SystemSampler sampler(m_settings, whole.sources(), history.path());
        FaultyCalls::stall(call, file.toStdString());
        for (int tick = 0; tick < ticks; ++tick) {
            SteppedClock::pass(1);
            sampler.tick(); // Returns, with the disk at a standstill.
        }
        FaultyCalls::waitForStalled();
        QCOMPARE(sampler.history().size(), std::size_t(60));
        QCOMPARE(sampler.current().timestamp, secondsSinceBoot());
        FaultyCalls::letGo();
    }
    // All of it was written and cut in the end: at the 300th tick to 120, and one more since.
    QCOMPARE(HistoryStore(history.path()).loadLast(1000).size(), std::size_t(121));
}

/// Its machines are kept in memory where they can be: a disk that is written to so often takes ten
/// times as long.
int main(int argc, char **argv)
{
    const QStorageInfo memory(u"/dev/shm"_s);
    if (memory.fileSystemType() == "tmpfs" && memory.bytesAvailable() > 60'000'000
        && QFileInfo(memory.rootPath()).isWritable())
        qputenv("TMPDIR", "/dev/shm");
    const QCoreApplication application(argc, argv);
    TestDamagedMachine test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_DamagedMachine.moc"
