#include "platform/KernelFile_linux.h"
#include "support/FaultyCalls.h"
#include "support/MachineTree.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <thread>
#include <vector>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(KernelFileKind)

class TestKernelFile : public QObject {
    Q_OBJECT

private slots:
    void init();
    void isAbsentWithoutARegularFile_data();
    void isAbsentWithoutARegularFile();
    void knowsMountPoints();
    void readsAgainFromTheStart();
    void followsAFileThatGrowsAndShrinks();
    void readsAFileThatShrinksMeanwhile_data();
    void readsAFileThatShrinksMeanwhile();
    void cutsAtTheLimit_data();
    void cutsAtTheLimit();
    void findsAFileThatComesLater();
    void followsLinks();
    void readsRecordsToTheEnd();
    void readsOneRecordAtOnce();
    void isAbsentWhenReadingIsRefused();
    void triesAgainAfterAFailedRead();
    void movesWithItsDescriptor();
    void closesWhatItOpened();
    void keepsAFewFilesOpen();

private:
    std::string path(const QString &name) const { return m_folder->filePath(name).toStdString(); }
    void write(const QString &name, const QByteArray &contents) const;

    std::optional<QTemporaryDir> m_folder;
};

namespace {

using Contents = std::optional<std::string>;

Contents contentsOf(KernelFile &file, std::size_t limit = KernelFile::wholeFile)
{
    const auto text = file.read(limit);
    return text ? Contents(std::string(*text)) : std::nullopt;
}

int openDescriptors()
{
    int count = 0;
    for (int descriptor = 0; descriptor < 256; ++descriptor)
        count += fcntl(descriptor, F_GETFD) >= 0 ? 1 : 0;
    return count;
}

} // namespace

void TestKernelFile::init()
{
    m_folder.emplace();
    QVERIFY(m_folder->isValid());
}

void TestKernelFile::write(const QString &name, const QByteArray &contents) const
{
    QFile file(m_folder->filePath(name)); // Truncates: the file stays the same one.
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(contents), contents.size());
}

void TestKernelFile::isAbsentWithoutARegularFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("missing") << u"missing"_s;
    QTest::newRow("in a missing folder") << u"missing/file"_s;
    QTest::newRow("below a file") << u"empty/file"_s;
    QTest::newRow("a FIFO that nobody writes") << u"fifo"_s;
    QTest::newRow("a folder") << u"folder"_s;
    QTest::newRow("a link to itself") << u"loop"_s;
    QTest::newRow("a link to nowhere") << u"dangling"_s;
    QTest::newRow("a link to a device") << u"device"_s;
    QTest::newRow("an empty file") << u"empty"_s;
    QTest::newRow("an empty name") << QString();
    QTest::newRow("a name that is too long") << QString(5000, u'x');
}

void TestKernelFile::isAbsentWithoutARegularFile()
{
    QFETCH(QString, name);
    write(u"empty"_s, {});
    QCOMPARE(mkfifo(path(u"fifo"_s).c_str(), 0600), 0);
    QCOMPARE(mkdir(path(u"folder"_s).c_str(), 0700), 0);
    QCOMPARE(symlink("loop", path(u"loop"_s).c_str()), 0);
    QCOMPARE(symlink("missing", path(u"dangling"_s).c_str()), 0);
    QCOMPARE(symlink("/dev/zero", path(u"device"_s).c_str()), 0);

    const std::string place = name.isEmpty() ? std::string() : path(name);
    KernelFile file(place);
    QVERIFY(!file.read());
    QVERIFY(!file.read());
    QVERIFY(!readKernelFile(place));
}

void TestKernelFile::readsAgainFromTheStart()
{
    write(u"file"_s, "one\n");
    KernelFile file(path(u"file"_s));
    QCOMPARE(contentsOf(file), Contents("one\n"));
    QCOMPARE(contentsOf(file), Contents("one\n"));
    write(u"file"_s, "two\n");
    QCOMPARE(contentsOf(file), Contents("two\n"));
    QCOMPARE(readKernelFile(path(u"file"_s)), Contents("two\n"));
}

void TestKernelFile::followsAFileThatGrowsAndShrinks()
{
    KernelFile file(path(u"file"_s));
    // Around the sizes at which the buffer grows, and back.
    for (const int size : {10, 4095, 4096, 4097, 8192, 100'000, 20, 0, 5000, 1}) {
        const QByteArray contents(size, char('a' + size % 26));
        write(u"file"_s, contents);
        if (size == 0)
            QVERIFY(!file.read());
        else
            QCOMPARE(contentsOf(file), Contents(contents.toStdString()));
    }
}

void TestKernelFile::readsAFileThatShrinksMeanwhile_data()
{
    QTest::addColumn<KernelFileKind>("kind");
    QTest::addColumn<int>("readsBefore");
    QTest::addColumn<int>("left");
    QTest::addColumn<int>("expected");
    for (const auto kind : {KernelFileKind::oneRecord, KernelFileKind::records}) {
        const char *name = kind == KernelFileKind::records ? "records" : "one record";
        QTest::addRow("%s, gone before the first read", name) << kind << 0 << 0 << 0;
        QTest::addRow("%s, shorter before the first read", name) << kind << 0 << 100 << 100;
        QTest::addRow("%s, gone after the first read", name) << kind << 1 << 0 << 4096;
        QTest::addRow("%s, shorter than what was read", name) << kind << 1 << 100 << 4096;
        QTest::addRow("%s, as long as what was read", name) << kind << 1 << 4096 << 4096;
        QTest::addRow("%s, a little longer", name) << kind << 1 << 4097 << 4097;
        QTest::addRow("%s, shorter after the second read", name) << kind << 2 << 5000 << 8192;
    }
}

/// The file shrinks between two of the system calls that read it.
void TestKernelFile::readsAFileThatShrinksMeanwhile()
{
    QFETCH(const KernelFileKind, kind);
    QFETCH(const int, readsBefore);
    QFETCH(const int, left);
    QFETCH(const int, expected);
    write(u"file"_s, QByteArray(10'000, 'x'));
    KernelFile file(path(u"file"_s), kind);
    FaultyCalls::stall(FaultyCalls::Call::read, path(u"file"_s));
    if (readsBefore > 0)
        FaultyCalls::letPass(FaultyCalls::Call::read, path(u"file"_s), readsBefore);
    Contents contents;
    std::thread reader([&] { contents = contentsOf(file); });
    FaultyCalls::waitForStalled();
    const bool hasShrunk = QFile::resize(m_folder->filePath(u"file"_s), left);
    FaultyCalls::clear();
    reader.join();
    QVERIFY(hasShrunk);
    const auto text = [](int size) {
        return size > 0 ? Contents(std::string(std::size_t(size), 'x')) : std::nullopt;
    };
    QCOMPARE(contents, text(expected));
    KernelFile handedOver = std::move(file);      // From the reader's thread to this one.
    QCOMPARE(contentsOf(handedOver), text(left)); // The next read keeps nothing of this one.
}

void TestKernelFile::cutsAtTheLimit_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("limit");
    QTest::addColumn<int>("expected");
    QTest::newRow("shorter than the limit") << 10 << 20 << 10;
    QTest::newRow("as long as the limit") << 20 << 20 << 20;
    QTest::newRow("longer than the limit") << 21 << 20 << 20;
    QTest::newRow("a limit beyond the first buffer") << 20'000 << 10'000 << 10'000;
    QTest::newRow("longer than any file of use") << int(KernelFile::wholeFile)
            + 1 << int(KernelFile::wholeFile) << int(KernelFile::wholeFile);
}

void TestKernelFile::cutsAtTheLimit()
{
    QFETCH(int, size);
    QFETCH(int, limit);
    QFETCH(int, expected);
    write(u"file"_s, QByteArray(size, 'x'));
    KernelFile file(path(u"file"_s));
    QCOMPARE(contentsOf(file, std::size_t(limit)),
             Contents(std::string(std::size_t(expected), 'x')));
    // An earlier long read does not extend a short one.
    QCOMPARE(contentsOf(file, 5), Contents("xxxxx"));
}

void TestKernelFile::findsAFileThatComesLater()
{
    KernelFile file(path(u"file"_s));
    QVERIFY(!file.read());
    write(u"file"_s, "here");
    QCOMPARE(contentsOf(file), Contents("here"));
}

void TestKernelFile::followsLinks()
{
    write(u"file"_s, "linked");
    QCOMPARE(symlink("file", path(u"link"_s).c_str()), 0);
    QCOMPARE(readKernelFile(path(u"link"_s)), Contents("linked"));
}

void TestKernelFile::readsRecordsToTheEnd()
{
    // The kernel's symbols are a long file that is read by records, each a little shorter than a
    // page. Only repeated reads yield 64 KiB of it.
    constexpr std::size_t limit = 65'536;
    const std::string symbols = "/proc/kallsyms";
    QFile whole(QString::fromStdString(symbols));
    if (!whole.open(QIODevice::ReadOnly | QIODevice::Unbuffered)
        || whole.readAll().size() < qsizetype(limit))
        QSKIP("this kernel does not list its symbols");
    const auto read = readKernelFile(symbols, limit);
    QVERIFY(read);
    QCOMPARE(read->size(), limit);
}

void TestKernelFile::readsOneRecordAtOnce()
{
    // Of any length, as on a machine with hundreds of processors.
    const QByteArray record(10'000, 'r');
    write(u"file"_s, record);
    KernelFile file(path(u"file"_s), KernelFileKind::oneRecord);
    QCOMPARE(contentsOf(file), Contents(record.toStdString()));
    QCOMPARE(contentsOf(file), Contents(record.toStdString()));

    // A file that is read by records shows that there is no second read.
    KernelFile symbols("/proc/kallsyms", KernelFileKind::oneRecord);
    if (const auto text = symbols.read())
        QVERIFY(text->size() <= std::size_t(sysconf(_SC_PAGESIZE)));
}

void TestKernelFile::isAbsentWhenReadingIsRefused()
{
    write(u"open"_s, "open");
    write(u"closed"_s, "closed");
    QCOMPARE(chmod(m_folder->path().toLocal8Bit().constData(), 0755), 0);
    QCOMPARE(chmod(path(u"open"_s).c_str(), 0644), 0);
    QCOMPARE(chmod(path(u"closed"_s).c_str(), 0000), 0);

    // An administrator can open every file, so a child of another user tries.
    enum Outcome { refused, notRefused, notReachable };
    const pid_t child = fork();
    QVERIFY(child >= 0);
    if (child == 0) {
        constexpr uid_t nobody = 65534;
        if (geteuid() == 0 && (setgid(nobody) != 0 || setuid(nobody) != 0))
            _exit(notReachable);
        if (!readKernelFile(path(u"open"_s)))
            _exit(notReachable);
        _exit(readKernelFile(path(u"closed"_s)) ? notRefused : refused);
    }
    int status = 0;
    QCOMPARE(waitpid(child, &status, 0), child);
    QVERIFY(WIFEXITED(status));
    if (WEXITSTATUS(status) == notReachable)
        QSKIP("no other user can reach the temporary folder");
    QCOMPARE(WEXITSTATUS(status), int(refused));
}

void TestKernelFile::triesAgainAfterAFailedRead()
{
    // A process can open its own memory; reading the first page fails, since it is not mapped.
    KernelFile memory("/proc/self/mem");
    if (access("/proc/self/mem", R_OK) != 0)
        QSKIP("this kernel does not show processes their memory");
    const int before = openDescriptors();
    QVERIFY(!memory.read());
    QVERIFY(!memory.read());
    QCOMPARE(openDescriptors(), before);
}

void TestKernelFile::movesWithItsDescriptor()
{
    write(u"one"_s, "one");
    write(u"two"_s, "two");
    KernelFile one(path(u"one"_s));
    QCOMPARE(contentsOf(one), Contents("one"));
    KernelFile moved = std::move(one);
    QCOMPARE(moved.path(), path(u"one"_s));
    QCOMPARE(contentsOf(moved), Contents("one"));
    KernelFile two(path(u"two"_s));
    QCOMPARE(contentsOf(two), Contents("two"));
    two = std::move(moved);
    QCOMPARE(two.path(), path(u"one"_s));
    QCOMPARE(contentsOf(two), Contents("one"));
}

void TestKernelFile::closesWhatItOpened()
{
    write(u"file"_s, "contents");
    const int before = openDescriptors();
    {
        KernelFile file(path(u"file"_s));
        QVERIFY(file.read());
        QVERIFY(file.read());
        QCOMPARE(openDescriptors(), before + 1);
        KernelFile folder(m_folder->path().toStdString());
        QVERIFY(!folder.read());
        QCOMPARE(openDescriptors(), before + 1);
        KernelFile moved = std::move(file);
        QCOMPARE(openDescriptors(), before + 1);
    }
    QVERIFY(readKernelFile(path(u"file"_s)));
    QCOMPARE(openDescriptors(), before);
}

void TestKernelFile::keepsAFewFilesOpen()
{
    write(u"file"_s, "contents");
    const int before = openDescriptors();
    std::vector<KernelFile> files;
    for (int number = 0; number < 2 * KernelFile::mostKeptOpen; ++number)
        files.emplace_back(path(u"file"_s));
    for (int round = 0; round < 2; ++round) {
        for (KernelFile &file : files)
            QCOMPARE(contentsOf(file), Contents("contents"));
        QCOMPARE(openDescriptors(), before + KernelFile::mostKeptOpen);
    }
    // A file that is gone or cannot be read leaves its place to another one.
    files.erase(files.begin(), files.begin() + 1);
    QCOMPARE(openDescriptors(), before + KernelFile::mostKeptOpen - 1);
    QCOMPARE(contentsOf(files.back()), Contents("contents"));
    QCOMPARE(openDescriptors(), before + KernelFile::mostKeptOpen);
    files.clear();
    QCOMPARE(openDescriptors(), before);
}

void TestKernelFile::knowsMountPoints()
{
    const MachineTree tree;
    tree.write("proc/stat", "cpu 1");
    QVERIFY(isMountPoint("/proc"));
    QVERIFY(!isMountPoint("/proc/self"));
    QVERIFY(!isMountPoint(tree.root() + "/proc/stat"));
    QVERIFY(!isMountPoint(tree.root() + "/proc/missing"));
}

QTEST_APPLESS_MAIN(TestKernelFile)
#include "tst_KernelFile.moc"
