#include "platform/KernelFolder_linux.h"

#include "support/MachineTree.h"

#include <QTest>

#include <fcntl.h>
#include <unistd.h>

using namespace corvane;

class TestKernelFolder : public QObject {
    Q_OBJECT

private slots:
    void listsByNumber();
    void isEmptyWhereThereIsNone();
    void givesEachNameOnce();
    void hasADescriptorWhileOpen();
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

void TestKernelFolder::givesEachNameOnce()
{
    const test::MachineTree tree;
    tree.write("folder/a", "");
    tree.write("folder/.hidden", "");
    KernelFolder folder(tree.root() + "/folder");
    QStringList names;
    while (const char *name = folder.nextName())
        names << QString::fromUtf8(name);
    names.sort();
    QCOMPARE(names, (QStringList{QStringLiteral(".hidden"), QStringLiteral("a")}));
}

void TestKernelFolder::hasADescriptorWhileOpen()
{
    const test::MachineTree tree;
    tree.write("folder/file", "");
    const KernelFolder folder(tree.root() + "/folder");
    QVERIFY(folder);
    QVERIFY(faccessat(folder.descriptor(), "file", F_OK, 0) == 0);

    KernelFolder missing(tree.root() + "/missing");
    QVERIFY(!missing);
    QCOMPARE(missing.descriptor(), -1);
    QCOMPARE(missing.nextName(), nullptr);
}

QTEST_GUILESS_MAIN(TestKernelFolder)
#include "tst_KernelFolder.moc"
