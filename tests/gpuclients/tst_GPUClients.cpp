#include "gpuclients/GPUClients.h"

#include "support/AccessWatch.h"
#include "support/MachineTree.h"

#include <QTest>

#include <filesystem>

using namespace corvane;
using namespace Qt::StringLiterals;
using corvane::test::AccessWatch;
using corvane::test::MachineTree;
using State = GPUAccess::State;

namespace {

const std::string card = "sys/devices/pci0000:00/0000:03:00.0";
const std::string kfd = "sys/class/kfd/kfd/";

std::string fdinfo(const std::string &client, const std::string &rest)
{
    return "drm-driver:\tamdgpu\ndrm-pdev:\t0000:03:00.0\ndrm-client-id:\t" + client + '\n' + rest;
}

/// A machine with one AMD card, whose clock is stepped by hand.
class Bench {
public:
    Bench()
    {
        tree.write(card + "/power/runtime_status", "active\n");
        tree.write(card + "/drm/renderD128/uevent", "");
        tree.write(kfd + "topology/nodes/1/gpu_id", "49911\n");
        tree.write(kfd + "topology/nodes/1/properties", "location_id 768\n");
        publish();
    }

    const MachineTree tree;
    const std::shared_ptr<GPUHandOver> handOver = std::make_shared<GPUHandOver>();
    double now = 1000;

    void publish(State state = State::open, bool integrated = false) const
    {
        handOver->publish({{.device = "card",
                            .address = "0000:03:00.0",
                            .folder = tree.root() + '/' + card,
                            .integrated = integrated,
                            .state = state}});
    }

    void open(int pid, int descriptor, const std::string &text) const
    {
        const std::string process = "proc/" + std::to_string(pid);
        const std::string folder = tree.root() + '/' + process + "/fd/";
        const std::string link = folder + std::to_string(descriptor);
        std::filesystem::create_directories(folder);
        std::filesystem::remove(link);
        std::filesystem::create_symlink("/dev/dri/renderD128", link);
        tree.write(process + "/fdinfo/" + std::to_string(descriptor), text);
    }

    /// "7 on card: 100 bytes 25 %" for each.
    QStringList used(const std::vector<std::int32_t> &pids = {7, 8})
    {
        QStringList texts;
        for (const GPUUse &use : clients.used(clients.told(), pids)) {
            QString text = u"%1 on %2:"_s.arg(use.use.pid).arg(QString::fromStdString(use.device));
            if (use.use.bytes)
                text += u" %1 bytes"_s.arg(*use.use.bytes);
            if (use.use.busyFraction)
                text += u" %1 %"_s.arg(*use.use.busyFraction * 100);
            texts << text;
        }
        return texts;
    }

    GPUClients clients{handOver, tree.root(), [this] { return now; }};
};

} // namespace

class TestGPUClients : public QObject {
    Q_OBJECT

private slots:
    void readsTheClientsOfProcesses();
    void countsTheMachinesMemoryOnAnIntegratedGPU();
    void aClientCountsOnce();
    void theBusiestEngineStandsForTheGPU();
    void takesTheLargerOfComputingAndDrawing();
    void passesOnWhatALibraryTells();
    void aContainerSeesNoHostNumbers();
    void aSleepingGPUIsNotTouched_data();
    void aSleepingGPUIsNotTouched();
    void keepsMemoryOfAGPUThatIsLeftAlone();
    void tellsBackWhatIsHeld();
};

void TestGPUClients::readsTheClientsOfProcesses()
{
    Bench bench;
    bench.open(7, 3,
               fdinfo("1", "drm-memory-vram:\t100\ndrm-memory-gtt:\t7\ndrm-engine-gfx:\t0 ns\n"));
    bench.open(8, 3, fdinfo("2", "drm-memory-vram:\t50\n"));
    bench.open(9, 3, fdinfo("3", "drm-memory-vram:\t5\n")); // Nobody asks for it.
    QCOMPARE(bench.used(), (QStringList{u"7 on card: 100 bytes"_s, u"8 on card: 50 bytes"_s}));
    bench.now += 4;
    bench.open(7, 3, fdinfo("1", "drm-memory-vram:\t200\ndrm-engine-gfx:\t1000000000 ns\n"));
    QCOMPARE(bench.used(), (QStringList{u"7 on card: 200 bytes 25 %"_s, u"8 on card: 50 bytes"_s}));
}

void TestGPUClients::countsTheMachinesMemoryOnAnIntegratedGPU()
{
    Bench bench;
    bench.publish(State::open, true);
    bench.open(7, 3, fdinfo("1", "drm-memory-vram:\t100\ndrm-memory-gtt:\t7\n"));
    QCOMPARE(bench.used(), QStringList{u"7 on card: 107 bytes"_s});
}

void TestGPUClients::aClientCountsOnce()
{
    Bench bench;
    const std::string same = fdinfo("1", "drm-memory-vram:\t100\n");
    bench.open(7, 3, same);
    bench.open(7, 4, same); // Duplicated.
    bench.open(7, 5, fdinfo("2", "drm-memory-vram:\t30\n"));
    bench.open(8, 3, same); // Inherited.
    QCOMPARE(bench.used(), QStringList{u"7 on card: 130 bytes"_s});
}

void TestGPUClients::theBusiestEngineStandsForTheGPU()
{
    Bench bench;
    const auto busy = [&bench](const std::string &gfx, const std::string &compute) {
        const std::string drawing = "drm-engine-gfx:\t" + gfx + " ns\n";
        bench.open(7, 3, fdinfo("1", drawing));
        bench.open(7, 4, fdinfo("2", drawing + "drm-engine-compute:\t" + compute + " ns\n"));
    };
    busy("0", "0");
    bench.used();
    bench.now += 10;
    busy("2000000000", "1000000000"); // Two clients that draw for a fifth of the time each.
    QCOMPARE(bench.used(), QStringList{u"7 on card: 40 %"_s});
}

void TestGPUClients::takesTheLargerOfComputingAndDrawing()
{
    Bench bench;
    bench.tree.write(kfd + "proc/7/vram_49911", "5000\n");
    bench.tree.write(kfd + "proc/12/vram_49911", "6000\n"); // Of another user.
    bench.open(7, 3, fdinfo("1", "drm-memory-vram:\t100\n"));
    QCOMPARE(bench.used(), (QStringList{u"7 on card: 5000 bytes"_s, u"12 on card: 6000 bytes"_s}));
}

void TestGPUClients::passesOnWhatALibraryTells()
{
    Bench bench;
    bench.handOver->publish(
        {{.device = "nvidia", .processes = {{{.pid = 7, .bytes = 100, .busyFraction = 0.25}}}}});
    QCOMPARE(bench.used(), QStringList{u"7 on nvidia: 100 bytes 25 %"_s});
    QVERIFY(!bench.clients.readsFiles());
}

void TestGPUClients::aContainerSeesNoHostNumbers()
{
    const auto handOver = std::make_shared<GPUHandOver>();
    handOver->publish({{.device = "nvidia", .processes = {{{.pid = 7, .bytes = 100}}}}});
    for (const bool isHost : {true, false}) {
        const MachineTree tree;
        std::filesystem::create_directories(tree.root() + "/proc/self/ns");
        std::filesystem::create_symlink(isHost ? "pid:[4026531836]" : "pid:[4026532456]",
                                        tree.root() + "/proc/self/ns/pid");
        GPUClients clients(handOver, tree.root(), [] { return 1000.0; });
        QCOMPARE(clients.told().empty(), !isHost);
    }
}

void TestGPUClients::aSleepingGPUIsNotTouched_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<QByteArray>("runtimeStatus");
    QTest::addColumn<bool>("statusIsRead");
    QTest::newRow("asleep") << int(State::asleep) << QByteArray("suspended\n") << false;
    QTest::newRow("left alone") << int(State::leftAlone) << QByteArray("active\n") << false;
    QTest::newRow("fallen asleep since the tick")
        << int(State::open) << QByteArray("suspending\n") << true;
}

void TestGPUClients::aSleepingGPUIsNotTouched()
{
    QFETCH(int, state);
    QFETCH(QByteArray, runtimeStatus);
    QFETCH(bool, statusIsRead);
    Bench bench;
    bench.open(7, 3, fdinfo("1", "drm-memory-vram:\t100\n"));
    bench.tree.write(kfd + "proc/7/vram_49911", "5000\n");
    bench.publish(State(state));
    bench.tree.write(card + "/power/runtime_status", runtimeStatus.toStdString());
    AccessWatch files(bench.tree.root());
    QVERIFY(bench.used().isEmpty());
    const QString status = QString::fromStdString(card + "/power/runtime_status");
    QCOMPARE(files.touched(), statusIsRead ? QStringList{status} : QStringList{});

    // The check can fail: awake, the files are read.
    bench.publish();
    bench.tree.write(card + "/power/runtime_status", "active\n");
    QCOMPARE(bench.used(), QStringList{u"7 on card: 5000 bytes"_s});
    QVERIFY(files.touched().contains(u"proc/7/fdinfo/3"_s));
}

void TestGPUClients::keepsMemoryOfAGPUThatIsLeftAlone()
{
    Bench bench;
    bench.open(7, 3, fdinfo("1", "drm-memory-vram:\t100\ndrm-engine-gfx:\t0 ns\n"));
    bench.open(8, 3, fdinfo("2", "drm-memory-vram:\t50\n"));
    bench.used();
    bench.now += 4;
    QCOMPARE(bench.used(), (QStringList{u"7 on card: 100 bytes 0 %"_s, u"8 on card: 50 bytes"_s}));
    bench.publish(State::leftAlone);
    std::filesystem::remove_all(bench.tree.root() + "/proc/8"); // It ends meanwhile.
    QCOMPARE(bench.used(), QStringList{u"7 on card: 100 bytes"_s});
    QCOMPARE(bench.used(), QStringList{u"7 on card: 100 bytes"_s});
    bench.publish(State::asleep);
    QCOMPARE(bench.used(), QStringList{});
}

void TestGPUClients::tellsBackWhatIsHeld()
{
    Bench bench;
    bench.open(7, 3, fdinfo("1", "drm-memory-vram:\t100\n"));
    bench.open(8, 3, fdinfo("2", "drm-memory-vram:\t50\n"));
    bench.used();
    QCOMPARE(bench.handOver->heldBytes("card", bench.now), std::optional<std::uint64_t>(150));
    QVERIFY(bench.handOver->isAsked(bench.now));
}

QTEST_GUILESS_MAIN(TestGPUClients)
#include "tst_GPUClients.moc"
