#include "history/HistoryStore.h"
#include "history/Records.h"
#include "support/FaultyCalls.h"
#include "support/NoThreads.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <chrono>
#include <memory>
#include <thread>

#include <cerrno>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using FaultyCalls::Call;

Q_DECLARE_METATYPE(corvane::test::FaultyCalls::Call)

namespace {

constexpr auto name = "history.jsonl";
constexpr auto newName = "history.jsonl.new";

} // namespace

/// The store on a disk whose calls fail or stall one by one.
class TestFaultyDisk : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void losesARefusedRecord_data();
    void losesARefusedRecord();
    void losesTheCutRecordAndTheOneBehindIt();
    void goesOnAfterAnInterruption();
    void writesWhereLockingFails_data();
    void writesWhereLockingFails();
    void keepsAFileThatCannotBeCut_data();
    void keepsAFileThatCannotBeCut();
    void cutsWithPartialWrites();
    void isEmptyWhereReadingFails_data();
    void isEmptyWhereReadingFails();
    void returnsWhileTheDiskStalls_data();
    void returnsWhileTheDiskStalls();
    void keepsTheNewestRecordsWhileTheDiskHangs();
    void returnsAtTheStartWhileTheDiskHangs_data();
    void returnsAtTheStartWhileTheDiskHangs();
    void stopsGrowingWhereItCannotBeCut();
    void goesOnOnceThereIsAThread();
    void waitsInItsDestructorForTheDisk();
    void readsAFileThatShrinksDuringTheRead();
    void doesNotRecreateAFileDeletedDuringTheRead();

private:
    QStringList files() const;

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
    std::unique_ptr<HistoryStore> m_store;
};

void TestFaultyDisk::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_path = m_folder->filePath(QLatin1StringView(name));
    m_store = std::make_unique<HistoryStore>(m_folder->path());
    append(*m_store, 1, 10);
    QCOMPARE(loaded(*m_store), numbers(1, 10));
}

void TestFaultyDisk::cleanup()
{
    FaultyCalls::clear();
    m_store.reset();
}

QStringList TestFaultyDisk::files() const
{
    return QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden);
}

void TestFaultyDisk::losesARefusedRecord_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<int>("error");
    QTest::newRow("the disk is full") << Call::write << ENOSPC;
    QTest::newRow("no descriptors are left") << Call::open << EMFILE;
    QTest::newRow("the folder is read-only") << Call::open << EROFS;
}

void TestFaultyDisk::losesARefusedRecord()
{
    QFETCH(const Call, call);
    QFETCH(const int, error);
    FaultyCalls::fail(call, name, error, 1);
    m_store->append(record(11));
    m_store->append(record(12));
    QCOMPARE(loaded(*m_store), numbers(1, 10) << 12);
    QCOMPARE(loadedAnew(m_folder->path()), numbers(1, 10) << 12);
}

void TestFaultyDisk::losesTheCutRecordAndTheOneBehindIt()
{
    FaultyCalls::cutNextWrite(name, 20);
    append(*m_store, 11, 14);
    QCOMPARE(loaded(*m_store), numbers(1, 10) + numbers(13, 14));
}

void TestFaultyDisk::goesOnAfterAnInterruption()
{
    FaultyCalls::fail(Call::write, name, EINTR, 3);
    FaultyCalls::fail(Call::read, name, EINTR, 3);
    m_store->append(record(11));
    QCOMPARE(loaded(*m_store), numbers(1, 11));
}

void TestFaultyDisk::writesWhereLockingFails_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<int>("error");
    QTest::newRow("the server has no locks") << Call::lock << ENOLCK;
    QTest::newRow("the folder cannot be opened") << Call::open << EACCES;
}

void TestFaultyDisk::writesWhereLockingFails()
{
    QFETCH(const Call, call);
    QFETCH(const int, error);
    m_store.reset();
    FaultyCalls::fail(call, m_folder->path().toStdString(), error);
    m_store = std::make_unique<HistoryStore>(m_folder->path());
    m_store->append(record(11));
    m_store->trim(4);
    QCOMPARE(loaded(*m_store), numbers(8, 11));
}

void TestFaultyDisk::keepsAFileThatCannotBeCut_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<int>("error");
    QTest::newRow("no descriptors are left") << Call::open << QByteArray(name) << EMFILE;
    QTest::newRow("the file cannot be read") << Call::read << QByteArray(name) << EIO;
    QTest::newRow("the new file cannot be created") << Call::open << QByteArray(newName) << EACCES;
    QTest::newRow("the new file has no room") << Call::write << QByteArray(newName) << ENOSPC;
    QTest::newRow("the new file does not reach the disk")
        << Call::sync << QByteArray(newName) << EIO;
    QTest::newRow("the new file cannot take its place") << Call::rename << QByteArray(name) << EIO;
}

void TestFaultyDisk::keepsAFileThatCannotBeCut()
{
    QFETCH(const Call, call);
    QFETCH(const QByteArray, file);
    QFETCH(const int, error);
    FaultyCalls::fail(call, file.toStdString(), error, 1);
    m_store->trim(4);
    QCOMPARE(loaded(*m_store), numbers(1, 10));
    QCOMPARE(files(), (QStringList{QLatin1StringView(name), u"minutes.jsonl"_s}));
    m_store->append(record(11));
    m_store->trim(4);
    QCOMPARE(loaded(*m_store), numbers(8, 11));
}

void TestFaultyDisk::cutsWithPartialWrites()
{
    for (int part = 1; part < 60; part += 7)
        FaultyCalls::cutNextWrite(newName, static_cast<std::size_t>(part));
    FaultyCalls::fail(Call::write, newName, EINTR, 2);
    m_store->trim(4);
    QCOMPARE(loaded(*m_store), numbers(7, 10));
}

void TestFaultyDisk::isEmptyWhereReadingFails_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<int>("error");
    QTest::newRow("the disk is broken") << Call::read << EIO;
    QTest::newRow("no descriptors are left") << Call::open << EMFILE;
}

void TestFaultyDisk::isEmptyWhereReadingFails()
{
    QFETCH(const Call, call);
    QFETCH(const int, error);
    FaultyCalls::fail(call, name, error);
    QCOMPARE(loaded(*m_store), QList<int>());
    FaultyCalls::clear();
    QCOMPARE(loaded(*m_store), numbers(1, 10));
}

void TestFaultyDisk::returnsWhileTheDiskStalls_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<QByteArray>("file");
    QTest::newRow("in opening") << Call::open << QByteArray(name);
    QTest::newRow("in writing") << Call::write << QByteArray(name);
    QTest::newRow("in reading before a cut") << Call::read << QByteArray(name);
    QTest::newRow("in writing the cut file") << Call::write << QByteArray(newName);
    QTest::newRow("in flushing it to the disk") << Call::sync << QByteArray(newName);
    QTest::newRow("in renaming it") << Call::rename << QByteArray(name);
}

void TestFaultyDisk::returnsWhileTheDiskStalls()
{
    QFETCH(const Call, call);
    QFETCH(const QByteArray, file);
    FaultyCalls::stall(call, file.toStdString());
    m_store->append(record(11));
    m_store->trim(10);
    FaultyCalls::waitForStalled();
    append(*m_store, 12, 300); // All of this returns while the disk stalls.
    m_store->trim(200);
    FaultyCalls::letGo();
    QCOMPARE(loaded(*m_store), numbers(101, 300));
}

void TestFaultyDisk::keepsTheNewestRecordsWhileTheDiskHangs()
{
    FaultyCalls::stall(Call::write, name);
    m_store->append(record(11));
    FaultyCalls::waitForStalled();
    std::this_thread::sleep_for(2100ms); // A shorter stall keeps all.
    for (int number = 12; number <= 5000; ++number) {
        m_store->append(record(number));
        if (number % 60 == 0)
            m_store->trim(120);
    }
    FaultyCalls::letGo();
    QCOMPARE(loaded(*m_store, 120), numbers(4881, 5000));
    QVERIFY(loaded(*m_store).size() < 200);
}

void TestFaultyDisk::returnsAtTheStartWhileTheDiskHangs_data()
{
    QTest::addColumn<Call>("call");
    QTest::newRow("in opening") << Call::open;
    QTest::newRow("in reading") << Call::read;
}

void TestFaultyDisk::returnsAtTheStartWhileTheDiskHangs()
{
    QFETCH(const Call, call);
    m_store.reset();
    FaultyCalls::stall(call, name);
    m_store = std::make_unique<HistoryStore>(m_folder->path());
    const auto records = m_store->startLoad(60);
    FaultyCalls::waitForStalled();
    QVERIFY(!records->take(10ms));
    m_store->append(record(11));
    FaultyCalls::letGo();
    QCOMPARE(records->take(1min).value().size(), std::size_t(10));
    QVERIFY(!records->take(0ms)); // Only once.
    QCOMPARE(loaded(*m_store), numbers(1, 11));
}

void TestFaultyDisk::stopsGrowingWhereItCannotBeCut()
{
    QFile file(m_path);
    QVERIFY(file.resize(LineFile::mostUncutBytes)); // A hole, which is one damaged line.
    append(*m_store, 11, 12);
    const QList<int> whole = loaded(*m_store); // The hole and the record behind it are one line.
    QCOMPARE(whole, numbers(1, 10) << 12);
    FaultyCalls::fail(Call::rename, name, EIO, 2);
    m_store->trim(1);
    append(*m_store, 13, 14);
    QCOMPARE(loaded(*m_store), whole);
    m_store->trim(1);
    m_store->trim(1);
    m_store->append(record(15));
    QCOMPARE(loaded(*m_store), (QList<int>{12, 15}));
}

void TestFaultyDisk::goesOnOnceThereIsAThread()
{
    m_store.reset();
    {
        const NoThreads limit;
        m_store = std::make_unique<HistoryStore>(m_folder->path());
        m_store->append(record(11));
        QVERIFY(m_store->loadLast(60).empty());
        QVERIFY(!m_store->startLoad(60)->take(0ms));
    }
    m_store->append(record(12));
    QCOMPARE(loaded(*m_store), numbers(1, 10) << 12);
}

void TestFaultyDisk::waitsInItsDestructorForTheDisk()
{
    FaultyCalls::stall(Call::write, name);
    append(*m_store, 11, 20);
    FaultyCalls::waitForStalled();
    std::thread disk([] {
        std::this_thread::sleep_for(100ms); // Most likely while the store waits for it.
        FaultyCalls::clear();
    });
    m_store.reset();
    disk.join();
    QCOMPARE(loadedAnew(m_folder->path()), numbers(1, 20));
}

void TestFaultyDisk::readsAFileThatShrinksDuringTheRead()
{
    const qint64 whole = QFile(m_path).size();
    FaultyCalls::stall(Call::read, name);
    m_store->trim(4); // Stalls when it knows the file's size.
    FaultyCalls::waitForStalled();
    QVERIFY(QFile::resize(m_path, whole / 2 + 10));
    FaultyCalls::letGo();
    const QList<int> left = loaded(*m_store);
    QVERIFY(left.size() < 10);
    QCOMPARE(left, numbers(1, static_cast<int>(left.size())));
    m_store->append(record(11)); // Behind the piece.
    m_store->append(record(12));
    QCOMPARE(loaded(*m_store), QList<int>(left) << 12);
}

void TestFaultyDisk::doesNotRecreateAFileDeletedDuringTheRead()
{
    FaultyCalls::stall(Call::read, name);
    m_store->trim(4); // Has it open by now.
    FaultyCalls::waitForStalled();
    QVERIFY(QFile::remove(m_path));
    FaultyCalls::letGo();
    QCOMPARE(loaded(*m_store), QList<int>());
    QCOMPARE(files(), QStringList{u"minutes.jsonl"_s});
}

QTEST_APPLESS_MAIN(TestFaultyDisk)
#include "tst_FaultyDisk.moc"
