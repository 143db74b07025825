#include "history/HistoryStore.h"
#include "history/Records.h"
#include "support/OwnMounts.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

#include <sys/mount.h>
#include <unistd.h>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

/// The store on a small disk of its own, which only this process sees and which ends with it.
class TestFullDisk : public QObject {
    Q_OBJECT

public:
    explicit TestFullDisk(bool mayMount) : m_mayMount(mayMount) { }

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void losesWhatTheDiskRefused();
    void keepsTheFileWhenThereIsNoRoomToTrimIt();
    void startsOnAFullDisk();
    void readsFromAReadOnlyDisk();
    void startsOnAReadOnlyDisk();

private:
    void fill() const;
    void setReadOnly(bool readOnly) const;

    const bool m_mayMount;
    std::unique_ptr<QTemporaryDir> m_folder;
    QByteArray m_disk;
};

void TestFullDisk::initTestCase()
{
    if (!m_mayMount)
        QSKIP("This user cannot have mounts of its own here.");
}

void TestFullDisk::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_disk = m_folder->path().toLocal8Bit();
    if (mount("none", m_disk.constData(), "tmpfs", 0, "size=64k") != 0)
        QSKIP(qPrintable(u"No disk can be mounted here: %1"_s.arg(qt_error_string())));
}

void TestFullDisk::cleanup()
{
    umount2(m_disk.constData(), MNT_DETACH);
}

/// Fills the disk; only what is left of a file's last block can be written then.
void TestFullDisk::fill() const
{
    QFile filler(m_folder->filePath(u"filler"_s));
    QVERIFY(filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    const QByteArray block(4096, 'x');
    while (filler.write(block) > 0) { }
}

void TestFullDisk::setReadOnly(bool readOnly) const
{
    const unsigned long flags = readOnly ? MS_REMOUNT | MS_RDONLY : MS_REMOUNT;
    QCOMPARE(mount("none", m_disk.constData(), "tmpfs", flags, "size=64k"), 0);
}

void TestFullDisk::losesWhatTheDiskRefused()
{
    HistoryStore store(m_folder->path());
    store.append(record(0));
    store.loadLast(1);
    fill();
    // Some fit into the rest of the file's block, the last of them in part.
    append(store, 1, 99);
    const auto written = static_cast<int>(store.loadLast(1000).size());
    QVERIFY(written > 1 && written < 100);
    QCOMPARE(QFile(m_folder->filePath(u"history.jsonl"_s)).size(), 4096);

    QVERIFY(QFile::remove(m_folder->filePath(u"filler"_s)));
    append(store, 100, 102);
    QCOMPARE(loaded(store), numbers(0, written - 1) + QList<int>({101, 102}));
}

void TestFullDisk::keepsTheFileWhenThereIsNoRoomToTrimIt()
{
    HistoryStore store(m_folder->path());
    append(store, 0, 149);
    QCOMPARE(store.loadLast(1000).size(), 150U);
    fill();
    store.trim(120);
    QCOMPARE(store.loadLast(1000).size(), 150U);
    const QStringList names = QDir(m_folder->path()).entryList(QDir::Files);
    QCOMPARE(names, QStringList({u"filler"_s, u"history.jsonl"_s, u"minutes.jsonl"_s}));

    QVERIFY(QFile::remove(m_folder->filePath(u"filler"_s)));
    store.trim(120);
    QCOMPARE(store.loadLast(1000).size(), 120U);
}

void TestFullDisk::startsOnAFullDisk()
{
    fill();
    HistoryStore store(m_folder->path());
    store.append(record(1));
    QVERIFY(store.loadLast(60).empty());
    QVERIFY(QFile::remove(m_folder->filePath(u"filler"_s)));
    store.append(record(2));
    QCOMPARE(store.loadLast(60).size(), 1U);
}

void TestFullDisk::readsFromAReadOnlyDisk()
{
    HistoryStore store(m_folder->path());
    append(store, 0, 2);
    QCOMPARE(store.loadLast(60).size(), 3U);
    setReadOnly(true);
    store.append(record(3));
    store.trim(1);
    QCOMPARE(store.loadLast(60).size(), 3U);
    setReadOnly(false);
    store.append(record(4));
    QCOMPARE(loaded(store), QList<int>({0, 1, 2, 4}));
}

void TestFullDisk::startsOnAReadOnlyDisk()
{
    setReadOnly(true);
    HistoryStore store(m_folder->filePath(u"Corvane"_s));
    store.append(record(1));
    store.trim(0);
    QVERIFY(store.loadLast(60).empty());
}

int main(int argc, char **argv)
{
    TestFullDisk test(unshareMounts());
    return QTest::qExec(&test, argc, argv);
}

#include "tst_FullDisk.moc"
