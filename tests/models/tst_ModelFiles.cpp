#include "models/ModelFiles_linux.h"
#include "support/MachineTree.h"

#include <QTest>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace corvane;
using namespace corvane::test;

class TestModelFiles : public QObject {
    Q_OBJECT

private slots:
    void seesWhatThisProcessUses();
    void findsFilesBelowTheRootOfAContainer();
    void seesNothingOfAProcessThatIsNotThere();
};

void TestModelFiles::seesWhatThisProcessUses()
{
    const MachineTree tree;
    const std::string mapped = tree.root() + "/mapped model.gguf";
    tree.write("mapped model.gguf", std::string(8192, 'x'));
    tree.write("open.safetensors", "x");
    const std::string opened = tree.root() + "/open.safetensors";
    const int file = open(mapped.c_str(), O_RDONLY);
    void *memory = mmap(nullptr, 8192, PROT_READ, MAP_SHARED, file, 0);
    QVERIFY(memory != MAP_FAILED && close(file) == 0);
    const int other = open(opened.c_str(), O_RDONLY);

    const ModelFiles files = ModelFiles::system();
    QVERIFY(files.mapped(getpid()) == (std::vector<MappedFile>{{mapped, 8192}}));
    QVERIFY(files.opened(getpid()) == std::vector<std::string>{opened});
    QCOMPARE(files.reachable(getpid(), opened), opened);
    munmap(memory, 8192);
    close(other);
    QVERIFY(files.mapped(getpid()).empty());
    QVERIFY(files.opened(getpid()).empty());
}

void TestModelFiles::findsFilesBelowTheRootOfAContainer()
{
    const MachineTree tree;
    tree.write("proc/7/root/mnt/models/model.file", "x");
    const ModelFiles files = linuxModelFiles(tree.root());
    QCOMPARE(files.reachable(7, "/mnt/models/model.file"),
             tree.root() + "/proc/7/root/mnt/models/model.file");
    QCOMPARE(files.reachable(7, "/mnt/models/missing"), std::string("/mnt/models/missing"));
}

void TestModelFiles::seesNothingOfAProcessThatIsNotThere()
{
    const ModelFiles files = linuxModelFiles("/nowhere");
    QVERIFY(files.mapped(7).empty());
    QVERIFY(files.opened(7).empty());
}

QTEST_APPLESS_MAIN(TestModelFiles)
#include "tst_ModelFiles.moc"
