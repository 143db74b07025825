#include "history/HistoryStore.h"
#include "history/Records.h"
#include "support/FaultyCalls.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <chrono>
#include <memory>
#include <thread>

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

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
    void losesTheRecordThatWasRefused_data();
    void losesTheRecordThatWasRefused();
    void losesTheCutRecordAndTheOneBehindIt();
    void writesOnAfterAnInterruption();
    void writesWhereNothingCanBeLocked_data();
    void writesWhereNothingCanBeLocked();
    void keepsTheFileThatCouldNotBeCut_data();
    void keepsTheFileThatCouldNotBeCut();
    void cutsWithWritesThatTakeAPart();
    void findsNothingWhereNothingCanBeRead_data();
    void findsNothingWhereNothingCanBeRead();
    void holdsNobodyUpWhileTheDiskStalls_data();
    void holdsNobodyUpWhileTheDiskStalls();
    void endsOnlyWhenTheDiskHasItAll();
    void readsAFileThatShrinksMeanwhile();
    void leavesAFileAloneThatIsDeletedMeanwhile();
    void survivesALoopOfLinks();
    void survivesAHugeFile();
    void survivesAHugeLine();

private:
    QList<int> loadedAnew() const;
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
    for (int number = 1; number <= 10; ++number)
        m_store->append(record(number));
    QCOMPARE(loaded(*m_store), numbers(1, 10));
}

void TestFaultyDisk::cleanup()
{
    FaultyCalls::clear();
    m_store.reset();
}

/// What another start finds.
QList<int> TestFaultyDisk::loadedAnew() const
{
    HistoryStore store(m_folder->path());
    return loaded(store);
}

QStringList TestFaultyDisk::files() const
{
    return QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden);
}

void TestFaultyDisk::losesTheRecordThatWasRefused_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<int>("error");
    QTest::newRow("the disk is full") << Call::write << ENOSPC;
    QTest::newRow("the disk is broken") << Call::write << EIO;
    QTest::newRow("the user's share is used up") << Call::write << EDQUOT;
    QTest::newRow("the file is too large") << Call::write << EFBIG;
    QTest::newRow("no descriptors are left") << Call::open << EMFILE;
    QTest::newRow("the system has none left") << Call::open << ENFILE;
    QTest::newRow("the folder is read-only") << Call::open << EROFS;
    QTest::newRow("the file was taken away from the user") << Call::open << EACCES;
    QTest::newRow("the server forgot the file") << Call::open << ESTALE;
}

void TestFaultyDisk::losesTheRecordThatWasRefused()
{
    QFETCH(const Call, call);
    QFETCH(const int, error);
    FaultyCalls::fail(call, name, error, 1);
    m_store->append(record(11));
    m_store->append(record(12));
    QCOMPARE(loaded(*m_store), numbers(1, 10) << 12);
    QCOMPARE(loadedAnew(), numbers(1, 10) << 12);
}

void TestFaultyDisk::losesTheCutRecordAndTheOneBehindIt()
{
    FaultyCalls::cutNextWrite(name, 20);
    for (int number = 11; number <= 14; ++number)
        m_store->append(record(number));
    QCOMPARE(loaded(*m_store), numbers(1, 10) + numbers(13, 14));
}

void TestFaultyDisk::writesOnAfterAnInterruption()
{
    FaultyCalls::fail(Call::write, name, EINTR, 3);
    FaultyCalls::fail(Call::read, name, EINTR, 3);
    m_store->append(record(11));
    QCOMPARE(loaded(*m_store), numbers(1, 11));
}

void TestFaultyDisk::writesWhereNothingCanBeLocked_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<int>("error");
    QTest::newRow("the server keeps no locks") << Call::lock << ENOLCK;
    QTest::newRow("the file system has none") << Call::lock << EOPNOTSUPP;
    QTest::newRow("the system has none") << Call::lock << ENOSYS;
    QTest::newRow("the folder cannot be read itself") << Call::open << EACCES;
}

void TestFaultyDisk::writesWhereNothingCanBeLocked()
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

void TestFaultyDisk::keepsTheFileThatCouldNotBeCut_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<int>("error");
    QTest::newRow("no descriptors are left") << Call::open << QByteArray(name) << EMFILE;
    QTest::newRow("it cannot be read") << Call::read << QByteArray(name) << EIO;
    QTest::newRow("the new one cannot be made") << Call::open << QByteArray(newName) << EACCES;
    QTest::newRow("the new one has no room") << Call::write << QByteArray(newName) << ENOSPC;
    QTest::newRow("the new one does not reach the disk")
        << Call::sync << QByteArray(newName) << EIO;
    QTest::newRow("the new one cannot take its place") << Call::rename << QByteArray(name) << EIO;
}

void TestFaultyDisk::keepsTheFileThatCouldNotBeCut()
{
    QFETCH(const Call, call);
    QFETCH(const QByteArray, file);
    QFETCH(const int, error);
    FaultyCalls::fail(call, file.toStdString(), error, 1);
    m_store->trim(4);
    QCOMPARE(loaded(*m_store), numbers(1, 10));
    QCOMPARE(files(), QStringList{QLatin1StringView(name)});
    m_store->append(record(11));
    m_store->trim(4);
    QCOMPARE(loaded(*m_store), numbers(8, 11));
}

void TestFaultyDisk::cutsWithWritesThatTakeAPart()
{
    for (int part = 1; part < 60; part += 7)
        FaultyCalls::cutNextWrite(newName, static_cast<std::size_t>(part));
    FaultyCalls::fail(Call::write, newName, EINTR, 2);
    m_store->trim(4);
    QCOMPARE(loaded(*m_store), numbers(7, 10));
}

void TestFaultyDisk::findsNothingWhereNothingCanBeRead_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<int>("error");
    QTest::newRow("the disk is broken") << Call::read << EIO;
    QTest::newRow("no descriptors are left") << Call::open << EMFILE;
}

void TestFaultyDisk::findsNothingWhereNothingCanBeRead()
{
    QFETCH(const Call, call);
    QFETCH(const int, error);
    FaultyCalls::fail(call, name, error);
    QCOMPARE(loaded(*m_store), QList<int>());
    FaultyCalls::clear();
    QCOMPARE(loaded(*m_store), numbers(1, 10));
}

void TestFaultyDisk::holdsNobodyUpWhileTheDiskStalls_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<QByteArray>("file");
    QTest::newRow("in opening") << Call::open << QByteArray(name);
    QTest::newRow("in writing") << Call::write << QByteArray(name);
    QTest::newRow("in reading, to cut") << Call::read << QByteArray(name);
    QTest::newRow("in writing the cut file") << Call::write << QByteArray(newName);
    QTest::newRow("in flushing it to the disk") << Call::sync << QByteArray(newName);
    QTest::newRow("in putting it in its place") << Call::rename << QByteArray(name);
}

void TestFaultyDisk::holdsNobodyUpWhileTheDiskStalls()
{
    QFETCH(const Call, call);
    QFETCH(const QByteArray, file);
    FaultyCalls::stall(call, file.toStdString());
    m_store->append(record(11));
    m_store->trim(10);
    FaultyCalls::waitForStalled();
    for (int number = 12; number <= 300; ++number) // All of this returns while the disk stalls.
        m_store->append(record(number));
    m_store->trim(200);
    FaultyCalls::letGo();
    QCOMPARE(loaded(*m_store), numbers(101, 300));
}

void TestFaultyDisk::endsOnlyWhenTheDiskHasItAll()
{
    FaultyCalls::stall(Call::write, name);
    for (int number = 11; number <= 20; ++number)
        m_store->append(record(number));
    FaultyCalls::waitForStalled();
    std::thread disk([] {
        std::this_thread::sleep_for(100ms); // Most likely while the store waits for it.
        FaultyCalls::clear();
    });
    m_store.reset();
    disk.join();
    QCOMPARE(loadedAnew(), numbers(1, 20));
}

void TestFaultyDisk::readsAFileThatShrinksMeanwhile()
{
    const qint64 whole = QFile(m_path).size();
    FaultyCalls::stall(Call::read, name);
    m_store->trim(4); // Stalls behind the question for the file's size.
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

void TestFaultyDisk::leavesAFileAloneThatIsDeletedMeanwhile()
{
    FaultyCalls::stall(Call::read, name);
    m_store->trim(4); // Has it open by now.
    FaultyCalls::waitForStalled();
    QVERIFY(QFile::remove(m_path));
    FaultyCalls::letGo();
    QCOMPARE(loaded(*m_store), QList<int>());
    QCOMPARE(files(), QStringList());
}

void TestFaultyDisk::survivesALoopOfLinks()
{
    m_store.reset();
    QVERIFY(QFile::remove(m_path));
    QVERIFY(QFile::link(m_path, m_path));
    HistoryStore store(m_folder->path());
    store.append(record(1));
    store.trim(0);
    QCOMPARE(loaded(store), QList<int>());
    QVERIFY(QFile::remove(m_path));
    QCOMPARE(loadedAnew(), QList<int>());
}

void TestFaultyDisk::survivesAHugeFile()
{
    // Two gibibytes, nearly all of them a hole, thus one endless line.
    const QByteArray path = QFile::encodeName(m_path);
    QCOMPARE(truncate(path.constData(), off_t(2) << 30), 0);
    m_store->append(record(11)); // Behind the hole, so that it is lost.
    m_store->append(record(12));
    m_store->append(record(13));
    QCOMPARE(loaded(*m_store, 60), numbers(12, 13));
    m_store->trim(1);
    QCOMPARE(loaded(*m_store), QList<int>{13});
    struct stat status = {};
    QCOMPARE(stat(path.constData(), &status), 0);
    QVERIFY(status.st_size < 1000);
}

void TestFaultyDisk::survivesAHugeLine()
{
    constexpr qint64 size = 100'000'000;
    {
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        QCOMPARE(file.write(QByteArray(size, '{')), size);
    }
    QCOMPARE(loaded(*m_store, 60), QList<int>());
    m_store->append(record(1));
    m_store->append(record(2));
    QCOMPARE(loaded(*m_store, 60), QList<int>{2});
    m_store->trim(1);
    QCOMPARE(loaded(*m_store), QList<int>{2});
    QVERIFY(QFile(m_path).size() < 1000);
}

QTEST_APPLESS_MAIN(TestFaultyDisk)
#include "tst_FaultyDisk.moc"
