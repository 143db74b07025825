#include "models/BoundedFile.h"
#include "support/MachineTree.h"

#include <QTest>

#include <algorithm>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace corvane;
using namespace corvane::test;

class TestBoundedFile : public QObject {
    Q_OBJECT

private slots:
    void readsAtMostWhatIsAskedFor();
    void refusesWhatIsNoFile();
    void followsLinksOnlyWhereItMay();
    void readsTheHeadOfAHugeSparseFile();
    void readsAFileThatShrankAsFarAsItGoes();
    void tellsVersionsApart();
    void listsFolders();

private:
    std::string path(const char *name) const { return m_tree.root() + '/' + name; }

    MachineTree m_tree;
};

void TestBoundedFile::readsAtMostWhatIsAskedFor()
{
    m_tree.write("a", "0123456789");
    const BoundedFile file(path("a"));
    QVERIFY(file);
    QCOMPARE(file.size(), std::uint64_t(10));
    QCOMPARE(file.head(4), std::string("0123"));
    QCOMPARE(file.head(100), std::string("0123456789"));
    QCOMPARE(file.head(0), std::string());
}

void TestBoundedFile::refusesWhatIsNoFile()
{
    QVERIFY(mkfifo(path("fifo").c_str(), 0600) == 0);
    QVERIFY(mkdir(path("folder").c_str(), 0700) == 0);
    for (const char *name : {"fifo", "folder", "missing", "a/b", ""})
        QVERIFY2(!BoundedFile(path(name)), name);
    QVERIFY(!BoundedFile("/dev/zero"));
    QVERIFY(!BoundedFile(std::string(10'000, 'x')));
}

void TestBoundedFile::followsLinksOnlyWhereItMay()
{
    m_tree.write("target", "x");
    m_tree.link("link", "target");
    QVERIFY(symlink("loop", path("loop").c_str()) == 0);
    QVERIFY(BoundedFile(path("link")));
    QVERIFY(!BoundedFile(path("link"), BoundedFile::Links::refuse));
    QVERIFY(!BoundedFile(path("loop")));
    QVERIFY(linkTarget(path("link")).has_value());
    QCOMPARE(linkTarget(path("loop")), std::optional<std::string>("loop"));
    QVERIFY(!linkTarget(path("target")));
    QVERIFY(!linkTarget(path("missing")));
}

void TestBoundedFile::readsTheHeadOfAHugeSparseFile()
{
    m_tree.write("sparse", "GGUF");
    QVERIFY(truncate(path("sparse").c_str(), std::int64_t(4) << 30) == 0);
    const BoundedFile file(path("sparse"));
    QCOMPARE(file.size(), std::uint64_t(4) << 30);
    QCOMPARE(file.head(65536).size(), std::size_t(65536));
}

void TestBoundedFile::readsAFileThatShrankAsFarAsItGoes()
{
    m_tree.write("shrinking", std::string(1000, 'x'));
    const BoundedFile file(path("shrinking"));
    QVERIFY(truncate(path("shrinking").c_str(), 10) == 0);
    QCOMPARE(file.head(1000), std::string(10, 'x'));
    QVERIFY(unlink(path("shrinking").c_str()) == 0);
    QCOMPARE(file.head(1000), std::string(10, 'x'));
}

void TestBoundedFile::tellsVersionsApart()
{
    m_tree.write("v", "one");
    const auto first = BoundedFile(path("v")).version();
    QVERIFY(first == BoundedFile(path("v")).version());
    m_tree.write("v", "three");
    QVERIFY(!(first == BoundedFile(path("v")).version()));
}

void TestBoundedFile::listsFolders()
{
    m_tree.write("list/b", "");
    m_tree.write("list/a", "");
    QVERIFY(close(open((path("list/") + "\xff").c_str(), O_CREAT | O_WRONLY, 0600)) == 0);
    auto names = folderNames(path("list"), 10);
    std::ranges::sort(names);
    QVERIFY(names == (std::vector<std::string>{"a", "b"}));
    QCOMPARE(folderNames(path("list"), 1).size(), std::size_t(1));
    m_tree.link("toList", "list");
    for (const char *name : {"toList", "missing", "list/a"})
        QVERIFY2(folderNames(path(name), 10).empty(), name);
}

QTEST_APPLESS_MAIN(TestBoundedFile)
#include "tst_BoundedFile.moc"
