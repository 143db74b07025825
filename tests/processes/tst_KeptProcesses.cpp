// Files of processes that are kept open, on real processes that come, go and start other programs.

#include "processes/KeptProcesses_linux.h"
#include "processes/LiveProcess.h"
#include "processes/Surveyor.h"
#include "support/DescriptorLimit.h"
#include "support/ProcessState.h"
#include "support/Waiting.h"

#include <QProcess>
#include <QTest>

#include <algorithm>
#include <map>
#include <set>

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

using Footprints = std::map<std::int32_t, FootprintBounds>;

Footprints footprintsOf(KeptProcesses &processes)
{
    Footprints byPid;
    for (const FootprintBounds &bounds : processes.footprints())
        byPid.emplace(bounds.pid, bounds);
    return byPid;
}

/// By somebody who keeps nothing.
Footprints freshFootprints()
{
    KeptProcesses processes("/");
    return footprintsOf(processes);
}

/// What is true of a moment between two others: it has what is in both, and nothing that is in
/// neither. Those of `sleeping` processes do not differ.
QString difference(const Footprints &before, const Footprints &between, const Footprints &after,
                   const std::set<pid_t> &sleeping = {})
{
    for (const auto &[pid, bounds] : before) {
        const auto later = after.find(pid);
        if (later == after.end())
            continue;
        const auto found = between.find(pid);
        if (found == between.end())
            return u"%1 is missing"_s.arg(pid);
        if (sleeping.contains(pid) && !(found->second == bounds))
            return u"%1 differs"_s.arg(pid);
    }
    for (const auto &[pid, bounds] : between) {
        if (!before.contains(pid) && !after.contains(pid) && freshFootprints().contains(pid))
            return u"%1 was not there"_s.arg(pid);
    }
    return {};
}

/// Sleeping children of this process.
class Crowd {
public:
    explicit Crowd(int count)
    {
        for (int i = 0; i < count; ++i) {
            const pid_t child = fork();
            if (child == 0)
                sleepForEver();
            if (child < 0)
                break;
            m_children.push_back(child);
        }
    }

    ~Crowd()
    {
        while (!m_children.empty())
            endOne();
    }

    Crowd(const Crowd &) = delete;
    Crowd &operator=(const Crowd &) = delete;

    std::set<pid_t> pids() const { return {m_children.begin(), m_children.end()}; }
    std::size_t size() const { return m_children.size(); }

    /// Ends the oldest child and starts another one.
    void changeOne()
    {
        endOne();
        addOne();
    }

    void addOne()
    {
        const pid_t child = fork();
        if (child == 0)
            sleepForEver();
        m_children.push_back(child);
    }

private:
    [[noreturn]] static void sleepForEver()
    {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        while (true)
            pause();
    }

    void endOne()
    {
        kill(m_children.front(), SIGKILL);
        waitpid(m_children.front(), nullptr, 0);
        m_children.erase(m_children.begin());
    }

    std::vector<pid_t> m_children;
};

} // namespace

class TestKeptProcesses : public QObject {
    Q_OBJECT

private slots:
    void equalsAFreshPassWhileProcessesComeAndGo();
    void keepsDescriptorsUntilItIsClosed();
    void keepsAShareOfTheLimit_data();
    void keepsAShareOfTheLimit();
    void makesRoomWhereNoDescriptorIsLeft();
    void noticesThatAProcessHasEnded();
    void readsTheNameOfAnotherProgram();
};

void TestKeptProcesses::equalsAFreshPassWhileProcessesComeAndGo()
{
    Crowd crowd(3000);
    if (crowd.size() < 3000)
        QSKIP("This user may not have so many processes.");
    const qsizetype descriptors = openDescriptors();
    {
        KeptProcesses kept("/");
        for (int pass = 0; pass < 10; ++pass) {
            for (int i = 0; i < 20; ++i)
                crowd.changeOne();
            const Footprints before = freshFootprints();
            const Footprints between = footprintsOf(kept);
            const Footprints after = freshFootprints();
            QVERIFY(between.size() >= 3000);
            QCOMPARE(difference(before, between, after, crowd.pids()), QString());
        }
    }
    QCOMPARE(openDescriptors(), descriptors);
}

void TestKeptProcesses::keepsDescriptorsUntilItIsClosed()
{
    const Crowd crowd(20);
    const qsizetype descriptors = openDescriptors();
    KeptProcesses kept("/");
    kept.footprints();
    const qsizetype open = openDescriptors();
    QVERIFY(open >= descriptors + 20);
    QVERIFY(kept.comm(getpid()));
    QVERIFY(kept.comm(getpid()));
    QCOMPARE(openDescriptors(), open + 1);
    kept.close();
    QCOMPARE(openDescriptors(), descriptors);
    QVERIFY(kept.comm(getpid()));
    QCOMPARE(openDescriptors(), descriptors);
}

void TestKeptProcesses::keepsAShareOfTheLimit_data()
{
    QTest::addColumn<int>("limit");
    QTest::addColumn<int>("kept");
    QTest::newRow("64") << 64 << 0;
    QTest::newRow("256") << 256 << 0;
    QTest::newRow("276") << 276 << 10;
}

void TestKeptProcesses::keepsAShareOfTheLimit()
{
    QFETCH(int, limit);
    QFETCH(int, kept);
    const Crowd crowd(30);
    const DescriptorLimit lower(static_cast<rlim_t>(limit));
    const qsizetype descriptors = openDescriptors();
    KeptProcesses processes("/");
    for (int pass = 0; pass < 3; ++pass) {
        const Footprints before = freshFootprints();
        const Footprints between = footprintsOf(processes);
        QCOMPARE(difference(before, between, freshFootprints()), QString());
        QVERIFY(processes.comm(getpid()));
        QCOMPARE(openDescriptors(), descriptors + kept);
    }
}

void TestKeptProcesses::makesRoomWhereNoDescriptorIsLeft()
{
    Crowd crowd(30);
    KeptProcesses processes("/");
    QVERIFY(processes.footprints().size() >= 30);
    for (int i = 0; i < 30; ++i)
        crowd.addOne(); // More than there are processes that end and leave a descriptor.
    const Footprints before = freshFootprints();
    std::vector<FileDescriptor> others;
    // All that are kept may stay so, and leave none to the new processes.
    const DescriptorLimit lower(static_cast<rlim_t>(2 * openDescriptors() + 600));
    while (auto other = FileDescriptor(dup(0)))
        others.push_back(std::move(other));
    others.pop_back(); // For the folder.
    const Footprints found = footprintsOf(processes);
    others.clear();
    QCOMPARE(difference(before, found, freshFootprints(), crowd.pids()), QString());
    QVERIFY(found.size() >= 30);
}

void TestKeptProcesses::noticesThatAProcessHasEnded()
{
    auto process = std::make_unique<LiveProcess>(u"ollama"_s, QStringList(), 5);
    QVERIFY(process->isReady());
    const auto pid = static_cast<std::int32_t>(process->pid());
    KeptProcesses kept("/");
    QVERIFY(footprintsOf(kept).contains(pid));
    QCOMPARE(kept.comm(pid), std::optional<std::string>("ollama\n"));
    const auto identity = kept.identity(pid);
    QVERIFY(identity && identity->startTime > 0);
    QCOMPARE(kept.identity(pid), identity);
    process.reset();
    QVERIFY(!kept.comm(pid));
    QVERIFY(!footprintsOf(kept).contains(pid));
    QVERIFY(!kept.identity(pid));
}

void TestKeptProcesses::readsTheNameOfAnotherProgram()
{
    QProcess shell;
    shell.start(u"/bin/sh"_s, {u"-c"_s, u"read line; exec sleep 1000"_s});
    QVERIFY(shell.waitForStarted(-1));
    const auto pid = static_cast<std::int32_t>(shell.processId());
    KeptProcesses kept("/");
    TRY_VERIFY((kept.footprints(), kept.comm(pid)) == std::optional<std::string>("sh\n"));
    shell.write("\n");
    TRY_COMPARE(kept.comm(pid), std::optional<std::string>("sleep\n"));
    QVERIFY(footprintsOf(kept).contains(pid));
    shell.kill();
    shell.waitForFinished(-1);
}

QTEST_GUILESS_MAIN(TestKeptProcesses)
#include "tst_KeptProcesses.moc"
