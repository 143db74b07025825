#include "memory/MemorySampler.h"

#include "memory/ProcMemInfo.h"
#include "platform/KernelFile_linux.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <vector>

#include <csignal>
#include <fcntl.h>
#include <linux/magic.h>
#include <sys/mman.h>
#include <sys/statfs.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace corvane;
using namespace Qt::StringLiterals;

/// Holds memory of each kind on this machine and watches `used` follow.
///
/// Other programs use the machine too. What they take and release is known from their processes,
/// and what waits in the processors' lists of free pages is known from the zones: both are
/// subtracted. The remaining noise shows in the kernel's own estimate of the available memory,
/// which our arithmetic does not use: an experiment counts only when that estimate moved by the
/// memory that was held and no more, and is repeated until then.
class TestLiveMemory : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void touchedMemoryIsUsed();
    void aFileInMemoryIsUsed();
    void aCachedDiskFileIsNotUsed();
    void staysNearTheFigureOfFree();
};

namespace {

constexpr double mib = 1024 * 1024;
constexpr double gib = 1024 * mib;
constexpr std::size_t megabyte = 1 << 20;

/// Both figures at one instant, in bytes, without the effect of other programs.
struct Levels {
    double used = 0;      ///< Ours.
    double available = 0; ///< The kernel's estimate.
};

/// A line of /proc/meminfo in bytes, found without the code under test.
double memInfoBytes(const QString &name)
{
    const std::string text = readKernelFile("/proc/meminfo").value_or(std::string());
    const QRegularExpression line(u"^%1: +(\\d+) kB$"_s.arg(QRegularExpression::escape(name)),
                                  QRegularExpression::MultilineOption);
    return line.match(QString::fromStdString(text)).captured(1).toDouble() * 1024;
}

double median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

double pageSize()
{
    return static_cast<double>(sysconf(_SC_PAGESIZE));
}

/// Memory in bytes that is not shared, of all processes but `holder`.
double processMemory(pid_t holder)
{
    double pages = 0;
    for (const QString &name : QDir(u"/proc"_s).entryList({u"[1-9]*"_s}, QDir::Dirs)) {
        if (name.toInt() == holder)
            continue;
        const auto statm = readKernelFile("/proc/" + name.toStdString() + "/statm");
        const QByteArrayList columns =
            QByteArray::fromStdString(statm.value_or("0 0 0")).split(' ');
        pages += columns.at(1).toDouble() - columns.at(2).toDouble(); // Resident without shared.
    }
    return pages * pageSize();
}

/// Free pages in bytes that wait in the processors' own lists. The kernel counts them as free only
/// once it has taken them back, seconds later.
double waitingPages()
{
    static const QRegularExpression counts(u"^ +count: +(\\d+)$"_s,
                                           QRegularExpression::MultilineOption);
    const std::string zones = readKernelFile("/proc/zoneinfo").value_or(std::string());
    double pages = 0;
    for (const auto &count : counts.globalMatch(QString::fromStdString(zones)))
        pages += count.captured(1).toDouble();
    return pages * pageSize();
}

/// Bytes that the kernel's estimate of the available memory leaves out although they are free or
/// cache: what each zone keeps back, and of the cache and of what can be reclaimed half each, but
/// no more than the low watermark (si_mem_available and calculate_totalreserve_pages in mm/).
double withheldMemory()
{
    static const QRegularExpression zone(
        uR"(low +(\d+)\s+high +(\d+).+?managed +(\d+).+?protection: \(([^)]+))"_s,
        QRegularExpression::DotMatchesEverythingOption);
    const std::string zones = readKernelFile("/proc/zoneinfo").value_or(std::string());
    double reserve = 0;
    double low = 0;
    for (const auto &match : zone.globalMatch(QString::fromStdString(zones))) {
        double protection = 0;
        for (const QString &number : match.captured(4).split(u", "_s))
            protection = std::max(protection, number.toDouble());
        reserve +=
            std::min(match.captured(2).toDouble() + protection, match.captured(3).toDouble());
        low += match.captured(1).toDouble();
    }
    low *= pageSize();
    const double files = memInfoBytes(u"Active(file)"_s) + memInfoBytes(u"Inactive(file)"_s);
    return reserve * pageSize() + std::min(files / 2, low)
        + std::min(memInfoBytes(u"KReclaimable"_s) / 2, low);
}

/// The median of several samples, so that the start of another process does not matter.
Levels levels(pid_t holder)
{
    std::vector<double> used;
    std::vector<double> available;
    for (int sample = 0; sample < 9; ++sample) {
        const double others = processMemory(holder) + waitingPages();
        used.push_back(static_cast<double>(MemorySampler::sample().used) - others);
        available.push_back(memInfoBytes(u"MemAvailable"_s) + others);
        QTest::qWait(10);
    }
    return {median(used), median(available)};
}

/// Memory to hold and to release again, and how that must change the levels.
struct Experiment {
    std::function<bool()> hold;
    std::function<bool()> release;
    double rise = 0;                                   ///< Of `used` while it is held.
    double tolerance = 0;                              ///< Of the measured changes.
    std::function<pid_t()> holder = [] { return -1; }; ///< The process that holds it.

    bool agrees(double change) const { return std::abs(change - rise) <= tolerance; }

    /// A change of the kernel's estimate that leaves no doubt: half the tolerance.
    bool confirms(double change) const { return std::abs(change - rise) <= tolerance / 2; }
};

/// How far `used` rose while memory was held, and fell when it was released.
struct Changes {
    double rise = 0;
    double fall = 0;
};

/// The changes in a run that the kernel's estimate confirms. Absent when there was none in time, or
/// when the memory could not be held.
std::optional<Changes> confirmedChanges(const Experiment &experiment)
{
    QElapsedTimer timer;
    timer.start();
    while (!timer.hasExpired(40'000)) {
        const Levels before = levels(experiment.holder());
        if (!experiment.hold())
            return std::nullopt;
        const Levels held = levels(experiment.holder());
        if (!experiment.release())
            return std::nullopt;
        const Levels after = levels(experiment.holder());
        if (experiment.confirms(before.available - held.available)
            && experiment.confirms(after.available - held.available))
            return Changes{held.used - before.used, held.used - after.used};
    }
    return std::nullopt;
}

/// Runs the experiment and checks it. A wrong result is tried twice more, since the kernel's
/// estimate and our counters are not read at the same instant.
void judge(const Experiment &experiment)
{
    std::optional<Changes> changes;
    for (int attempt = 0; attempt < 3; ++attempt) {
        changes = confirmedChanges(experiment);
        if (!changes)
            QSKIP("the memory may not be held here, or other programs never leave it still");
        qInfo("used rose by %.1f MiB and fell by %.1f MiB", changes->rise / mib,
              changes->fall / mib);
        if (experiment.agrees(changes->rise) && experiment.agrees(changes->fall))
            return;
    }
    QVERIFY2(experiment.agrees(changes->rise), "while it was held");
    QVERIFY2(experiment.agrees(changes->fall), "when it was released");
}

/// A child process that holds touched memory until `end`.
class Holder {
public:
    ~Holder() { end(); }

    bool start(std::size_t bytes)
    {
        std::array<int, 2> ready = {};
        if (pipe2(ready.data(), O_CLOEXEC) != 0)
            return false;
        m_child = fork();
        if (m_child == 0)
            hold(bytes, ready[1]);
        close(ready[1]);
        char answer = 0;
        const bool holds = read(ready[0], &answer, 1) == 1; // Nothing comes from a child that died.
        close(ready[0]);
        return holds || (end(), false);
    }

    pid_t pid() const { return m_child; }

    bool end()
    {
        if (m_child <= 0)
            return false;
        kill(m_child, SIGKILL);
        const bool ended = waitpid(m_child, nullptr, 0) == m_child;
        m_child = -1;
        return ended;
    }

private:
    [[noreturn]] static void hold(std::size_t bytes, int ready)
    {
        void *const memory =
            mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED)
            _exit(EXIT_FAILURE);
        auto *const bytesOfIt = static_cast<volatile char *>(memory);
        for (std::size_t offset = 0; offset < bytes; offset += std::size_t(pageSize()))
            bytesOfIt[offset] = 1;
        const bool isReported = write(ready, "!", 1) == 1;
        while (isReported)
            pause();
        _exit(EXIT_FAILURE);
    }

    pid_t m_child = -1; ///< None: -1.
};

bool writeBytes(int descriptor, std::size_t bytes)
{
    const std::vector<char> block(megabyte, 'x');
    for (std::size_t written = 0; written < bytes; written += block.size()) {
        if (write(descriptor, block.data(), block.size()) != ssize_t(block.size()))
            return false;
    }
    return true;
}

bool readBytes(int descriptor, std::size_t bytes)
{
    std::vector<char> block(megabyte);
    for (std::size_t offset = 0; offset < bytes; offset += block.size()) {
        if (pread(descriptor, block.data(), block.size(), off_t(offset)) != ssize_t(block.size()))
            return false;
    }
    return true;
}

} // namespace

void TestLiveMemory::initTestCase()
{
    if (memInfoBytes(u"MemAvailable"_s) < 6 * gib)
        QSKIP("less than 6 GiB of memory are available");
}

void TestLiveMemory::touchedMemoryIsUsed()
{
    constexpr double size = 2 * gib;
    Holder holder;
    judge({.hold = [&holder] { return holder.start(std::size_t(size)); },
           .release = [&holder] { return holder.end(); },
           .rise = size,
           .tolerance = 0.03 * size,
           .holder = [&holder] { return holder.pid(); }});
}

void TestLiveMemory::aFileInMemoryIsUsed()
{
    constexpr double size = gib;
    const int file = memfd_create("corvane-live-memory", MFD_CLOEXEC);
    if (file < 0)
        QSKIP("this kernel has no files in memory");
    judge({.hold =
               [file] {
                   return lseek(file, 0, SEEK_SET) == 0 && writeBytes(file, std::size_t(size));
               },
           .release = [file] { return ftruncate(file, 0) == 0; },
           .rise = size,
           .tolerance = 0.03 * size});
    close(file);
}

void TestLiveMemory::aCachedDiskFileIsNotUsed()
{
    constexpr double size = gib;
    const QByteArray folder = QDir::homePath().toLocal8Bit();
    struct statfs disk = {};
    QCOMPARE(statfs(folder.constData(), &disk), 0);
    if (disk.f_type == TMPFS_MAGIC || disk.f_type == RAMFS_MAGIC)
        QSKIP("the home folder is not on a disk");
    if (static_cast<double>(disk.f_bavail) * static_cast<double>(disk.f_bsize) < 2 * size)
        QSKIP("the disk is nearly full");

    const int file = open((folder + "/live-memory").constData(), O_RDWR | O_CREAT | O_TRUNC, 0600);
    QVERIFY(file >= 0);
    unlink((folder + "/live-memory").constData()); // Gone even if this test is ended by force.
    const auto dropCache = [file] { return posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED) == 0; };
    if (!writeBytes(file, std::size_t(size)) || fsync(file) != 0 || !dropCache()) {
        close(file);
        QSKIP("the disk does not take the file");
    }
    // A read that fills no cache proves nothing.
    const auto readIntoCache = [file] {
        const double before = memInfoBytes(u"Cached"_s);
        return readBytes(file, std::size_t(size))
            && memInfoBytes(u"Cached"_s) - before > 0.9 * size;
    };
    judge({.hold = readIntoCache, .release = dropCache, .rise = 0, .tolerance = 0.03 * size});
    close(file);
}

/// "used" of `free`: since version 4 of its package all that is not available, which counts what
/// the kernel withholds; before, all that is neither free nor buffer nor cache, which leaves shared
/// memory out.
void TestLiveMemory::staysNearTheFigureOfFree()
{
    const auto distance = [](double theirs) {
        const auto used = static_cast<double>(MemorySampler::sample().used);
        return std::min(std::abs(used - theirs), std::abs(used - theirs + withheldMemory()));
    };
    const auto notAvailable = [] {
        return memInfoBytes(u"MemTotal"_s) - memInfoBytes(u"MemAvailable"_s);
    };
    const auto neitherFreeNorCache = [] {
        return memInfoBytes(u"MemTotal"_s) - memInfoBytes(u"MemFree"_s) - memInfoBytes(u"Buffers"_s)
            - memInfoBytes(u"Cached"_s) - memInfoBytes(u"SReclaimable"_s);
    };
    std::vector<std::function<double()>> answers{notAvailable, neitherFreeNorCache};
    if (!QStandardPaths::findExecutable(u"free"_s).isEmpty()) {
        answers.emplace_back([] {
            QProcess free;
            free.start(u"free"_s, {u"--bytes"_s});
            free.waitForFinished();
            static const QRegularExpression mem(u"^Mem: +\\d+ +(\\d+)"_s,
                                                QRegularExpression::MultilineOption);
            return mem.match(QString::fromLatin1(free.readAllStandardOutput()))
                .captured(1)
                .toDouble();
        });
    }
    const double allowed = 0.02 * memInfoBytes(u"MemTotal"_s) + memInfoBytes(u"Shmem"_s);
    for (const auto &answer : answers) {
        // Another program may start between the two readings.
        double nearest = distance(answer());
        for (int attempt = 0; attempt < 20 && nearest > allowed; ++attempt)
            nearest = std::min(nearest, distance(answer()));
        qInfo("%.1f MiB from the other figure, %.1f allowed", nearest / mib, allowed / mib);
        QVERIFY(nearest <= allowed);
    }
}

QTEST_GUILESS_MAIN(TestLiveMemory)
#include "tst_LiveMemory.moc"
