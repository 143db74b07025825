#include "gpuclients/KfdFiles_linux.h"

#include "support/MachineTree.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;
using corvane::test::MachineTree;

namespace {

const std::string kfd = "sys/class/kfd/kfd/";

void addNode(const MachineTree &tree, const std::string &node, const std::string &number,
             const std::string &location)
{
    tree.write(kfd + "topology/nodes/" + node + "/gpu_id", number + '\n');
    tree.write(kfd + "topology/nodes/" + node + "/properties",
               "location_id " + location + "\ndomain 0\n");
}

QStringList textsOf(const std::vector<KfdUse> &uses)
{
    QStringList texts;
    for (const KfdUse &use : uses)
        texts << u"%1: %2 on %3"_s.arg(use.pid).arg(use.bytes).arg(
            QString::fromStdString(use.address));
    return texts;
}

} // namespace

class TestKfdFiles : public QObject {
    Q_OBJECT

private slots:
    void readsTheMemoryOfProcesses();
    void touchesNoOtherGPU();
    void looksForGPUsOnceAMinute();
    void isEmptyWithoutTheDriver();
};

void TestKfdFiles::readsTheMemoryOfProcesses()
{
    const MachineTree tree;
    addNode(tree, "0", "0", "0"); // The CPU.
    addNode(tree, "1", "49911", "768");
    tree.write(kfd + "proc/4711/vram_49911", "21474836480\n");
    tree.write(kfd + "proc/4711/sdma_49911", "5\n");
    tree.write(kfd + "proc/99/vram_49911", "0\n");
    tree.write(kfd + "proc/98/vram_49911", "garbage\n");
    tree.write(kfd + "proc/97/vram_49911", "1125899906842625\n");
    tree.write(kfd + "proc/0/vram_49911", "5\n");
    tree.write(kfd + "proc/x/vram_49911", "5\n");
    tree.write(kfd + "proc/96/vram_1", "5\n"); // A GPU that is not in the list.
    KfdFiles files(tree.root());
    QCOMPARE(textsOf(files.read({"0000:03:00.0"}, 100)),
             (QStringList{u"99: 0 on 0000:03:00.0"_s, u"4711: 21474836480 on 0000:03:00.0"_s}));
}

void TestKfdFiles::touchesNoOtherGPU()
{
    const MachineTree tree;
    addNode(tree, "1", "49911", "768");
    addNode(tree, "2", "5", "1024");
    tree.write(kfd + "proc/4711/vram_49911", "100\n");
    tree.write(kfd + "proc/4711/vram_5", "200\n");
    KfdFiles files(tree.root());
    QCOMPARE(textsOf(files.read({"0000:04:00.0"}, 100)),
             QStringList{u"4711: 200 on 0000:04:00.0"_s});
    QCOMPARE(textsOf(files.read({}, 100)), QStringList{});
}

void TestKfdFiles::looksForGPUsOnceAMinute()
{
    const MachineTree tree;
    KfdFiles files(tree.root());
    QVERIFY(files.read({"0000:03:00.0"}, 100).empty());
    addNode(tree, "1", "49911", "768");
    tree.write(kfd + "proc/4711/vram_49911", "100\n");
    QVERIFY(files.read({"0000:03:00.0"}, 159).empty());
    QCOMPARE(files.read({"0000:03:00.0"}, 160).size(), std::size_t(1));
}

void TestKfdFiles::isEmptyWithoutTheDriver()
{
    const MachineTree tree;
    KfdFiles files(tree.root());
    QVERIFY(files.read({"0000:03:00.0"}, 100).empty());
}

QTEST_GUILESS_MAIN(TestKfdFiles)
#include "tst_KfdFiles.moc"
