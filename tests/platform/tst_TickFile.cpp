#include "platform/TickFile_linux.h"

#include "support/FaultyCalls.h"
#include "support/MachineTree.h"
#include "support/OwnMounts.h"
#include "support/TestMounts.h"
#include "support/Waiting.h"

#include <QElapsedTimer>
#include <QTest>

using namespace corvane;
using namespace corvane::test;
using FaultyCalls::Call;
using Text = std::optional<std::string_view>;

class TestTickFile : public QObject {
    Q_OBJECT

public:
    explicit TestTickFile(bool mayMount) : m_mayMount(mayMount) { }

private slots:
    void cleanup() { FaultyCalls::clear(); }
    void readsTheKernelsFileItself();
    void readsAMountedFileOnAnotherThread();
    void aMountThatHangsDelaysNothing();

private:
    bool m_mayMount;
};

void TestTickFile::readsTheKernelsFileItself()
{
    const MachineTree tree;
    TickFile file(tree.root() + "/proc/stat");
    QVERIFY(!file.read());
    tree.write("proc/stat", "cpu 1");
    QCOMPARE(file.read(), Text("cpu 1"));
    tree.write("proc/stat", "cpu 2");
    QCOMPARE(file.read(), Text("cpu 2"));
}

void TestTickFile::readsAMountedFileOnAnotherThread()
{
    const MachineTree tree;
    tree.write("served", "cpu 1");
    tree.write("proc/stat", "");
    const BoundFile mounted(tree.root() + "/served", tree.root() + "/proc/stat");
    if (!m_mayMount || !mounted.isMounted())
        QSKIP("This user may not mount a file");
    double now = 0;
    TickFile file(tree.root() + "/proc/stat", [&now] { return now; });
    const auto readsSoon = [&](const char *text) {
        return QTest::qWaitFor([&] { return file.read() == Text(text); }, patience);
    };
    QVERIFY(readsSoon("cpu 1"));
    tree.write("served", "cpu 2");
    QVERIFY(readsSoon("cpu 2"));

    FaultyCalls::stall(Call::open, "/proc/stat");
    file.read();
    FaultyCalls::waitForStalled();
    QCOMPARE(file.read(), Text("cpu 2"));
    now += 2.6;
    QCOMPARE(file.read(), Text());
    tree.write("served", "cpu 3");
    FaultyCalls::clear();
    QVERIFY(readsSoon("cpu 3"));
}

void TestTickFile::aMountThatHangsDelaysNothing()
{
    const MachineTree tree;
    tree.write("proc/stat", "");
    const HangingMount mounted(tree.root() + "/proc/stat");
    if (!m_mayMount || !mounted.isMounted())
        QSKIP("This user may not mount a file system");
    QElapsedTimer elapsed;
    elapsed.start();
    QVERIFY(isMountPoint(tree.root() + "/proc/stat"));
    TickFile file(tree.root() + "/proc/stat");
    for (int tick = 0; tick < 10; ++tick)
        QCOMPARE(file.read(), Text());
    QVERIFY(elapsed.elapsed() < 10'000);
}

int main(int argc, char **argv)
{
    TestTickFile test(unshareMounts()); // Before the first thread.
    return QTest::qExec(&test, argc, argv);
}

#include "tst_TickFile.moc"
