#include "chip/ChipSource_linux.h"
#include "memory/MemoryFiles_linux.h"
#include "processes/ProcessSource_linux.h"
#include "processes/Surveyor.h"
#include "sampler/SystemSampler.h"
#include "support/FaultyCalls.h"
#include "support/MachineTree.h"
#include "support/NumberArgument.h"
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

/// What is done to one file or folder of the machine.
struct Damage {
    std::function<void(const fs::path &)> apply = {};
    bool inPlace = false; ///< Whether readers see it that already have the file open.
};

} // namespace

Q_DECLARE_METATYPE(Damage)

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

Damage filledWith(const QByteArray &text)
{
    return {.apply = [text](const fs::path &path) { writeText(path, text); }, .inPlace = true};
}

template <typename Make>
Damage replacedBy(Make make)
{
    return {.apply = [make](const fs::path &path) {
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
constexpr std::size_t someGroups = 4; ///< So that a reader of several files meets several.

/// A desktop, laptop or board with memory, three processes and all that its tree holds.
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

    /// All of its files or folders without the links, in `count` groups or one by one.
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
        const auto memory = std::make_shared<MemoryFiles>(root());
        return {.memory = [memory] { return MemorySampler::snapshot(memory->read()); },
                .chip = openChipSourceBelow(root()),
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

bool isPlausible(const ChipReading &chip)
{
    return isFraction(chip.cpuActiveFraction) && isFraction(chip.gpuActiveFraction)
        && std::ranges::all_of(chip.cpuCoreUtilizations, isFraction)
        && std::isfinite(totalWatts(chip)) && totalWatts(chip) >= 0 && totalWatts(chip) < 1e6
        && std::isfinite(chip.cpuActiveMHz) && isTemperature(chip.cpuTempC)
        && isTemperature(chip.gpuTempC) && isTemperature(chip.packageTempC);
}

bool isPlausible(const SystemMetrics &sample)
{
    return sample.memory.used <= sample.memory.total && (!sample.chip || isPlausible(*sample.chip));
}

/// The figures that must be back when the damage is repaired.
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

/// The sampler on machines whose files or folders are damaged, replaced or refused, many at once
/// and one after the other: it goes on, shows only plausible figures meanwhile, and all of them
/// afterwards.
class TestDamagedMachine : public QObject {
    Q_OBJECT

public:
    explicit TestDamagedMachine(bool isLong) : m_isLong(isLong) { }

private slots:
    void initTestCase();
    void cleanup();
    void survivesDamage_data();
    void survivesDamage();
    void survivesFailingCalls_data();
    void survivesFailingCalls();
    void noTickWaitsForADiskThatStalls();

private:
    QString ticks(SystemSampler &sampler, const std::string &root);

    const bool m_isLong; ///< Whether more is damaged one by one.
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

/// Two ticks, long enough after the last that everything is searched for again, and a survey.
/// Returns the figures; empty if they are not plausible.
QString TestDamagedMachine::ticks(SystemSampler &sampler, const std::string &root)
{
    SteppedClock::pass(61);
    sampler.tick();
    const bool wasPlausible = isPlausible(sampler.current());
    SteppedClock::pass(1);
    const double before = sampler.current().timestamp;
    sampler.tick();
    const Survey survey = Surveyor(linuxProcesses(root)).take();
    const bool goesOn = sampler.current().timestamp > before;
    if (!wasPlausible || !goesOn || !isPlausible(sampler.current()) || survey.processes.size() > 3)
        return {};
    return described(sampler.current());
}

void TestDamagedMachine::survivesDamage_data()
{
    QTest::addColumn<QByteArray>("machine");
    QTest::addColumn<bool>("folders");
    QTest::addColumn<std::size_t>("groups");
    QTest::addColumn<Damage>("damage");
    const auto addFor = [](const char *name, bool folders, std::size_t groups,
                           const Damage &damage) {
        for (const char *machine :
             {"amd-desktop", "amd-apu-laptop", "intel-hybrid-nvidia", "arm-board-chip"})
            QTest::addRow("%s: %s", machine, name)
                << QByteArray(machine) << folders << groups << damage;
    };
    const auto add = [&](const char *name, bool folders, const Damage &damage) {
        addFor(name, folders, someGroups, damage);
    };
    const Damage gone = replacedBy([](const fs::path &) {});
    const Damage garbage = filledWith("\xff\x00\xfe cpu9999999999 \xc3\x28\n\n"_ba);
    addFor("one file after the other vanishes", false, oneByOne, gone);
    if (m_isLong) {
        addFor("one file after the other holds garbage", false, oneByOne, garbage);
        addFor("one folder after the other vanishes", true, oneByOne, gone);
    }
    add("files vanish", false, gone);
    add("files are empty", false, filledWith({}));
    add("files are cut", false,
        {.apply =
             [](const fs::path &path) {
                 const QByteArray text = textOf(path);
                 writeText(path, text.first(text.size() / 2));
             },
         .inPlace = true});
    add("files hold garbage", false, garbage);
    add("files hold a huge number", false, filledWith("99999999999999999999999999\n"_ba));
    add("files hold a negative number", false, filledWith("-9223372036854775808\n"_ba));
    add("files have grown to a megabyte", false, filledWith(QByteArray(1 << 20, '7')));
    add("files are folders", false,
        replacedBy([](const fs::path &path) { fs::create_directory(path); }));
    add("files are FIFOs", false, replacedBy([](const fs::path &path) {
            if (mkfifo(path.c_str(), 0600) != 0)
                qFatal("no FIFO");
        }));
    add("files are loops of links", false,
        replacedBy([](const fs::path &path) { fs::create_symlink(path.filename(), path); }));
    add("folders vanish", true, gone);
    add("folders are files", true, replacedBy(filledWith("0\n"_ba).apply));
}

void TestDamagedMachine::survivesDamage()
{
    QFETCH(const QByteArray, machine);
    QFETCH(const bool, folders);
    QFETCH(const std::size_t, groups);
    QFETCH(const Damage, damage);
    const WholeMachine whole(machine.toStdString());
    const QTemporaryDir keptFolder;
    const fs::path kept = keptFolder.path().toStdString();
    fs::copy(whole.root(), kept, recursively);
    SystemSampler sampler(m_settings, whole.sources(), m_history.path());
    const QString before = ticks(sampler, whole.root());
    QVERIFY(!before.isEmpty());

    for (const auto &group : whole.groups(folders, groups)) {
        for (const fs::path &path : group) {
            std::error_code noFolder; // Its folder may have been damaged before it.
            if (fs::exists(path, noFolder))
                damage.apply(path);
        }
        QVERIFY(!ticks(sampler, whole.root()).isEmpty());
        // Also after a start with the damage.
        SystemSampler late(m_settings, whole.sources(), m_history.path());
        QVERIFY(!ticks(late, whole.root()).isEmpty());
        for (const fs::path &path : group)
            restore(path, kept / path.lexically_relative(whole.root()), damage.inPlace);
    }
    QCOMPARE(ticks(sampler, whole.root()), before);
    QCOMPARE(Surveyor(linuxProcesses(whole.root())).take().processes.size(), std::size_t(3));
}

void TestDamagedMachine::survivesFailingCalls_data()
{
    QTest::addColumn<bool>("opening");
    QTest::addColumn<int>("error");
    QTest::newRow("reads fail") << false << EIO;
    QTest::newRow("reads are interrupted") << false << EINTR;
    QTest::newRow("the driver is busy") << false << EAGAIN;
    QTest::newRow("no descriptors are left") << true << EMFILE;
    QTest::newRow("this user may not open the files") << true << EACCES;
}

void TestDamagedMachine::survivesFailingCalls()
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
        groups.push_back({fs::path()}); // All files. Interrupted reads are tried again.
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
    QCOMPARE(Surveyor(linuxProcesses(whole.root())).take().processes.size(), std::size_t(3));
}

void TestDamagedMachine::noTickWaitsForADiskThatStalls()
{
    constexpr int ticks = 300;
    const QTemporaryDir history;
    const WholeMachine whole("amd-desktop");
    {
        SystemSampler sampler(m_settings, whole.sources(), history.path());
        FaultyCalls::stall(Call::write, "/history.jsonl");
        for (int tick = 0; tick < ticks; ++tick) {
            SteppedClock::pass(1);
            sampler.tick(); // Returns while the disk stalls.
        }
        FaultyCalls::waitForStalled();
        QCOMPARE(sampler.history().size(), std::size_t(60));
        QCOMPARE(sampler.current().timestamp, secondsSinceBoot());
        FaultyCalls::letGo();
    }
    // All was written and cut in the end: to 120 at the 300th tick, and one more since.
    QCOMPARE(HistoryStore(history.path()).loadLast(1000).size(), std::size_t(121));
}

/// The machines are kept in memory if possible: on a disk their many writes take ten times as long.
/// "--one-by-one 1" damages more files and folders one by one.
int main(int argc, char **argv)
{
    const QStorageInfo memory(u"/dev/shm"_s);
    if (memory.fileSystemType() == "tmpfs" && memory.bytesAvailable() > 60'000'000
        && QFileInfo(memory.rootPath()).isWritable())
        qputenv("TMPDIR", "/dev/shm");
    const bool isLong = takeNumber("--one-by-one", 0, argc, argv) != 0;
    const QCoreApplication application(argc, argv);
    TestDamagedMachine test(isLong);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_DamagedMachine.moc"
