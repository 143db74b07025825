#include "history/HistoryStore.h"
#include "history/Records.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <limits>
#include <memory>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

QByteArray line(int number)
{
    return lines(number, number);
}

} // namespace

class TestHistoryStore : public QObject {
    Q_OBJECT

private slots:
    void init();
    void isInTheFolderForApplicationData();
    void createsFolderAndFile();
    void leavesAnExistingFileAlone();
    void isReadableForItsUserAlone_data();
    void isReadableForItsUserAlone();
    void writesIntoAFolderThatTookThePlaceOfItsOwn();
    void loads_data();
    void loads();
    void trims_data();
    void trims();
    void dropsARecordThatIsNotFinite();
    void finishesItsWritesInItsDestructor();
    void seesEveryAppendBeforeALoad();
    void writesOnlyWhileNoOtherStoreDoes();
    void doesNotRecreateADeletedFile();
    void survivesTheLossOfItsFolder();
    void survivesAFileInPlaceOfItsFolder();

private:
    void write(const QByteArray &contents) const;
    QByteArray contents() const;

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_directory;
    QString m_path;
};

void TestHistoryStore::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_directory = m_folder->filePath(u"Corvane"_s);
    m_path = m_directory + "/history.jsonl"_L1;
}

void TestHistoryStore::write(const QByteArray &contents) const
{
    QVERIFY(QDir().mkpath(m_directory));
    QFile file(m_path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(contents), contents.size());
}

QByteArray TestHistoryStore::contents() const
{
    QFile file(m_path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}

void TestHistoryStore::isInTheFolderForApplicationData()
{
    QStandardPaths::setTestModeEnabled(true);
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    QCOMPARE(HistoryStore::defaultDirectory(), data + "/Corvane"_L1);
    HistoryStore store;
    store.loadLast(1);
    QVERIFY(QFile::exists(data + "/Corvane/history.jsonl"_L1));
    QStandardPaths::setTestModeEnabled(false);
}

void TestHistoryStore::createsFolderAndFile()
{
    m_directory = m_folder->filePath(u"new/with blanks/and Ümläute/Corvane"_s);
    m_path = m_directory + "/history.jsonl"_L1;
    HistoryStore store(m_directory);
    QVERIFY(store.loadLast(1).empty());
    QCOMPARE(contents(), QByteArray());
    store.append(record(1));
    QCOMPARE(store.loadLast(60).size(), 1U);
    QCOMPARE(contents(), line(1));
}

void TestHistoryStore::leavesAnExistingFileAlone()
{
    write("\nnot ours\n\n" + line(1));
    QCOMPARE(loadedAnew(m_directory), QList<int>{1});
    QCOMPARE(contents(), "\nnot ours\n\n" + line(1));
}

void TestHistoryStore::isReadableForItsUserAlone_data()
{
    QTest::addColumn<bool>("isThere");
    QTest::newRow("a new history") << false;
    QTest::newRow("a history that others can read") << true;
}

/// Others could lock a folder that they can open, and see when somebody works here.
void TestHistoryStore::isReadableForItsUserAlone()
{
    QFETCH(const bool, isThere);
    constexpr QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup
        | QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
    if (isThere) {
        write(lines(1, 130));
        QVERIFY(QFile::setPermissions(m_path, QFile::permissions(m_path) | others));
        QVERIFY(QFile::setPermissions(m_directory, QFile::permissions(m_directory) | others));
    }
    HistoryStore store(m_directory);
    for (int round = 0; round < 2; ++round) {
        store.append(record(131));
        store.loadLast(1);
        QCOMPARE(QFile::permissions(m_directory) & others, QFile::Permissions());
        QCOMPARE(QFile::permissions(m_path) & others, QFile::Permissions());
        store.trim(120);
    }
}

/// The lock is that of the folder which is there now.
void TestHistoryStore::writesIntoAFolderThatTookThePlaceOfItsOwn()
{
    HistoryStore first(m_directory);
    first.append(record(1));
    first.loadLast(1);
    QVERIFY(QDir().rename(m_directory, m_directory + "-old"_L1));
    HistoryStore second(m_directory);
    second.append(record(2));
    second.loadLast(1);
    first.append(record(3)); // The second holds the lock on this folder.
    QCOMPARE(first.loadLast(10).size(), 1U);
    QCOMPARE(contents(), line(2));
}

void TestHistoryStore::loads_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<int>("count");
    QTest::addColumn<QList<int>>("expected");
    const auto row = [](const char *name, const QByteArray &contents, int count,
                        const QList<int> &expected) {
        QTest::newRow(name) << contents << count << expected;
    };
    const QByteArray cut = line(9).left(40);
    row("the smallest number is requested", lines(1, 10), std::numeric_limits<int>::min(), {});
    row("the largest number is requested", lines(1, 10), std::numeric_limits<int>::max(),
        numbers(1, 10));
    row("fewer than requested come in the file's order", lines(1, 10), 60, numbers(1, 10));
    row("more than requested: the newest come", lines(1, 200), 60, numbers(141, 200));
    row("the last one is cut", lines(1, 3) + cut, 60, numbers(1, 3));
    row("an older line does not take the place of a damaged one", lines(1, 3) + "x\n" + line(4), 2,
        {4});
    row("only damaged lines are among the newest", lines(1, 3) + "x\n{}\n", 2, {});
    row("records out of order keep their order", line(3) + line(1) + line(2), 60, {3, 1, 2});
}

void TestHistoryStore::loads()
{
    QFETCH(QByteArray, contents);
    QFETCH(int, count);
    write(contents);
    QTEST(loadedAnew(m_directory, count), "expected");
    QCOMPARE(this->contents(), contents);
}

void TestHistoryStore::trims_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<int>("count");
    QTest::addColumn<QByteArray>("after");
    const auto row = [](const char *name, const QByteArray &before, int count,
                        const QByteArray &after) {
        QTest::newRow(name) << before << count << after;
    };
    row("the oldest sixty of 180 are dropped", lines(1, 180), 120, lines(61, 180));
    row("damaged lines among the newest stay", lines(1, 2) + "x\n" + line(3), 2, "x\n" + line(3));
    row("a negative number is kept", lines(1, 3), -5, "");
    row("the largest number is kept", lines(1, 3), std::numeric_limits<int>::max(), lines(1, 3));
}

void TestHistoryStore::trims()
{
    QFETCH(QByteArray, before);
    QFETCH(int, count);
    write(before);
    HistoryStore store(m_directory);
    store.trim(count);
    store.loadLast(1);
    QTEST(contents(), "after");
}

void TestHistoryStore::dropsARecordThatIsNotFinite()
{
    {
        HistoryStore store(m_directory);
        store.append(record(1));
        PersistedMetric metric = record(2);
        metric.gpuW = std::numeric_limits<double>::quiet_NaN();
        store.append(metric);
        store.append(record(3));
    }
    QCOMPARE(contents(), line(1) + line(3));
}

void TestHistoryStore::finishesItsWritesInItsDestructor()
{
    {
        HistoryStore store(m_directory);
        append(store, 1, 500);
        store.trim(120);
        store.append(record(501));
    }
    QCOMPARE(contents(), lines(381, 501));
}

void TestHistoryStore::seesEveryAppendBeforeALoad()
{
    HistoryStore store(m_directory);
    for (int number = 1; number <= 200; ++number) {
        store.append(record(number));
        if (number % 60 == 0)
            store.trim(120);
        const std::vector<PersistedMetric> newest = store.loadLast(1);
        QCOMPARE(newest.size(), 1U);
        QCOMPARE(newest.front().t, static_cast<double>(number));
    }
    QCOMPARE(contents(), lines(61, 200));
}

void TestHistoryStore::writesOnlyWhileNoOtherStoreDoes()
{
    HistoryStore second(m_directory);
    {
        HistoryStore first(m_directory);
        first.append(record(1));
        QCOMPARE(first.loadLast(1).size(), 1U);

        second.append(record(2));
        second.trim(0);
        QCOMPARE(second.loadLast(10).size(), 1U); // It can read.
        QCOMPARE(contents(), line(1));

        first.append(record(3));
    }
    second.append(record(4));
    QCOMPARE(second.loadLast(10).size(), 3U);
    QCOMPARE(contents(), line(1) + line(3) + line(4));
}

void TestHistoryStore::doesNotRecreateADeletedFile()
{
    {
        HistoryStore store(m_directory);
        store.append(record(1));
        QCOMPARE(store.loadLast(60).size(), 1U);
        QVERIFY(QFile::remove(m_path));
        store.append(record(2));
        store.trim(0);
        QVERIFY(store.loadLast(60).empty());
    }
    QVERIFY(!QFile::exists(m_path));
    {
        HistoryStore store(m_directory);
        store.append(record(3));
    }
    QCOMPARE(loadedAnew(m_directory), QList<int>{3});
}

void TestHistoryStore::survivesTheLossOfItsFolder()
{
    HistoryStore store(m_directory);
    store.append(record(1));
    QCOMPARE(store.loadLast(60).size(), 1U);
    QVERIFY(QDir(m_directory).removeRecursively());
    store.append(record(2));
    store.trim(0);
    QVERIFY(store.loadLast(60).empty());
    QVERIFY(!QFile::exists(m_directory));

    // Somebody may restore the file, for instance from a backup.
    write(lines(1, 3));
    store.append(record(4));
    QCOMPARE(store.loadLast(60).size(), 4U);
}

void TestHistoryStore::survivesAFileInPlaceOfItsFolder()
{
    QFile file(m_directory);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("someone's");
    file.close();
    {
        HistoryStore store(m_directory);
        store.append(record(1));
        store.trim(0);
        QVERIFY(store.loadLast(60).empty());
    }
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("someone's"));
}

QTEST_APPLESS_MAIN(TestHistoryStore)
#include "tst_HistoryStore.moc"
