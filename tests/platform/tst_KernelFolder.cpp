#include "platform/KernelFolder.h"

#include "support/MachineTree.h"

#include <QTest>

using namespace corvane;

class TestKernelFolder : public QObject {
    Q_OBJECT

private slots:
    void listsByNumber();
    void isEmptyWhereThereIsNone();
};

void TestKernelFolder::listsByNumber()
{
    const test::MachineTree tree;
    for (const char *name : {"hwmon10", "hwmon2", "hwmon1", "all"})
        tree.write(std::string("folder/") + name, "");
    const std::vector<std::string> expected = {"all", "hwmon1", "hwmon2", "hwmon10"};
    QCOMPARE(namesInFolder(tree.root() + "/folder"), expected);
}

void TestKernelFolder::isEmptyWhereThereIsNone()
{
    const test::MachineTree tree;
    tree.write("file", "");
    QVERIFY(namesInFolder(tree.root() + "/folder").empty());
    QVERIFY(namesInFolder(tree.root() + "/file").empty());
}

QTEST_GUILESS_MAIN(TestKernelFolder)
#include "tst_KernelFolder.moc"
