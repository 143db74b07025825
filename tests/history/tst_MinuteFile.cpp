#include "history/HistoryStore.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <chrono>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

const QByteArray versionLine = R"({"corvane":"minutes","version":1})"
                               "\n";

MinuteRecord minute(int number)
{
    MinuteRecord minute{.means = {.start = number * 60.0, .seconds = 60},
                        .energy = {.seconds = 60, .all = double(number), .gpu = 0.1}};
    minute.means.means[0] = {50, 40, 60, 60};
    return minute;
}

QByteArray line(int number)
{
    return *minute(number).toLine() + '\n';
}

QByteArray lines(int first, int last)
{
    QByteArray all;
    for (int number = first; number <= last; ++number)
        all += line(number);
    return all;
}

QList<int> numbers(const std::vector<MeanRecord> &means)
{
    QList<int> numbers;
    for (const MeanRecord &mean : means)
        numbers.append(int(mean.start / 60));
    return numbers;
}

} // namespace

class TestMinuteFile : public QObject {
    Q_OBJECT

private slots:
    void init();
    void beginsWithTheVersion();
    void readsWhatItWrote();
    void readsTheMeansOfADayAndTheEnergyOfAll();
    void skipsDamage_data();
    void skipsDamage();
    void beginsALineBehindACutOne_data();
    void beginsALineBehindACutOne();
    void leavesAnotherVersionAlone();
    void isNotCreatedAgainWhileItRuns();
    void cutsToAWeek();
    void cutsOnceADayToo();
    void samplesOfAMinuteWithoutALineAreUnsaved();
    void aMinuteThatTheClockRepeatsIsUnsaved();
    void aSecondStoreOnlyReads();

private:
    void put(const QByteArray &contents) const;
    QByteArray contents() const;
    LoadedMinutes load(double now = 100'000 * 60.0) const;

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
    QByteArray m_name;
};

void TestMinuteFile::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_path = m_folder->filePath(u"minutes.jsonl"_s);
    m_name = QFile::encodeName(m_path);
}

void TestMinuteFile::put(const QByteArray &contents) const
{
    QFile file(m_path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(contents), contents.size());
}

QByteArray TestMinuteFile::contents() const
{
    QFile file(m_path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// What a new start loads.
LoadedMinutes TestMinuteFile::load(double now) const
{
    HistoryStore store(m_folder->path());
    return store.startLoadMinutes(now)->take(std::chrono::minutes(1)).value_or(LoadedMinutes());
}

void TestMinuteFile::beginsWithTheVersion()
{
    load();
    QCOMPARE(contents(), versionLine);
    QCOMPARE(QFile::permissions(m_path)
                 & (QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther),
             QFile::Permissions());
}

void TestMinuteFile::readsWhatItWrote()
{
    {
        HistoryStore store(m_folder->path());
        store.append(minute(7));
        store.append(minute(9));
    }
    QCOMPARE(contents(), versionLine + line(7) + line(9));
    const LoadedMinutes loaded = load(600);
    QCOMPARE(loaded.means.size(), std::size_t(2));
    QCOMPARE(loaded.means.back(), minute(9).means);
}

void TestMinuteFile::readsTheMeansOfADayAndTheEnergyOfAll()
{
    put(versionLine + lines(0, 2'999));
    const LoadedMinutes loaded = load(3'000 * 60.0);
    QCOMPARE(loaded.means.size(), std::size_t(1'441));
    QCOMPARE(loaded.means.front().start, 1'559 * 60.0);
    QCOMPARE(loaded.energy.size(), std::size_t(200)); // Quarters of an hour.
    QCOMPARE(loaded.energy[1].start, 900.0);
    QCOMPARE(loaded.energy[1].energy.all, 15.0 * 22); // From 15 to 29.
    QCOMPARE(loaded.energy[1].energy.seconds, 900.0);
}

void TestMinuteFile::skipsDamage_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<QList<int>>("found");
    const QList<int> both{99'998, 99'999};
    const QByteArray first = line(99'998);
    const QByteArray second = line(99'999);
    QTest::newRow("whole") << versionLine + first + second << both;
    QTest::newRow("no line with the version") << first + second << both;
    QTest::newRow("a cut line with the version")
        << versionLine.left(9) + '\n' + first + second << both;
    QTest::newRow("an empty file") << QByteArray() << QList<int>();
    QTest::newRow("empty lines") << versionLine + '\n' + first + "\n\n" + second << both;
    QTest::newRow("garbage between lines")
        << versionLine + first + QByteArray("\xff\x00[[\n", 5) + second << both;
    QTest::newRow("a cut line") << versionLine + first + second.left(30) << both.mid(0, 1);
    QTest::newRow("no last line feed") << versionLine + first + second.chopped(1) << both;
    QTest::newRow("damaged means")
        << versionLine + QByteArray(first).replace("40", "90") + second << both.mid(1);
    QTest::newRow("a line that is too long")
        << versionLine + first + QByteArray(70'000, '1') + '\n' + second << both;
    QTest::newRow("a line longer than two reads")
        << versionLine + first + QByteArray(300'000, '1') + '\n' + second << both;
}

void TestMinuteFile::skipsDamage()
{
    QFETCH(QByteArray, contents);
    put(contents);
    const LoadedMinutes loaded = load();
    QTEST(numbers(loaded.means), "found");
    QCOMPARE(this->contents(), contents); // Reading repairs nothing.
}

void TestMinuteFile::beginsALineBehindACutOne_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::newRow("a cut line") << versionLine + line(1).left(20)
                                << versionLine + line(1).left(20) + '\n' + line(2);
    QTest::newRow("a whole line without its feed")
        << versionLine + line(1).chopped(1) << versionLine + line(1) + line(2);
    QTest::newRow("a cut version") << versionLine.left(9) << versionLine.left(9) + '\n' + line(2);
    QTest::newRow("an empty file") << QByteArray() << versionLine + line(2);
}

void TestMinuteFile::beginsALineBehindACutOne()
{
    QFETCH(QByteArray, before);
    put(before);
    HistoryStore(m_folder->path()).append(minute(2));
    QTEST(contents(), "after");
}

void TestMinuteFile::leavesAnotherVersionAlone()
{
    const QByteArray another = R"({"corvane":"minutes","version":2})"
                               "\n"
        + line(99'999);
    put(another);
    QVERIFY(load().means.empty());
    HistoryStore(m_folder->path()).append(minute(2));
    QCOMPARE(contents(), another);
}

void TestMinuteFile::isNotCreatedAgainWhileItRuns()
{
    HistoryStore store(m_folder->path());
    store.loadLast(1);
    QVERIFY(QFile::remove(m_path));
    store.append(minute(2));
    store.loadLast(1);
    QVERIFY(!QFile::exists(m_path));
}

void TestMinuteFile::cutsToAWeek()
{
    const int last = int(MinuteFile::mostLines);
    put(versionLine + lines(1, last));
    load();
    QCOMPARE(contents(), versionLine + lines(1, last)); // Full, and left as it was.
    put(versionLine + lines(1, last + 5));
    load();
    QCOMPARE(contents(), versionLine + lines(6, last + 5));
}

void TestMinuteFile::cutsOnceADayToo()
{
    MinuteFile file(m_name.toStdString());
    put(versionLine + lines(1, int(MinuteFile::mostLines)));
    for (int number = 0; number < 1'439; ++number)
        file.append(minute(20'000 + number));
    QCOMPARE(contents().count('\n'), qsizetype(1 + MinuteFile::mostLines + 1'439));
    file.append(minute(30'000));
    QCOMPARE(contents().count('\n'), qsizetype(1 + MinuteFile::mostLines));
    QVERIFY(contents().startsWith(versionLine + line(1'441)));
    QVERIFY(contents().endsWith(line(30'000)));
}

void TestMinuteFile::samplesOfAMinuteWithoutALineAreUnsaved()
{
    {
        HistoryStore store(m_folder->path());
        for (int second = 100; second < 150; ++second)
            store.append(PersistedMetric{.t = double(second), .memTotal = 10, .cpuW = 2});
        store.append(minute(1)); // From 60 to 119.
    }
    const LoadedMinutes loaded = load();
    QCOMPARE(loaded.unsaved.size(), std::size_t(30));
    QCOMPARE(loaded.unsaved.front().sample.timestamp, 120.0);
    QCOMPARE(loaded.unsaved.front().seconds, 1.0); // From the last sample of the saved minute.
    QCOMPARE(loaded.unsaved.back().sample.chip->cpuWatts, 2.0);
}

void TestMinuteFile::aMinuteThatTheClockRepeatsIsUnsaved()
{
    {
        HistoryStore store(m_folder->path());
        store.append(minute(1));
        store.append(minute(2));
        for (int second = 60; second < 70; ++second)
            store.append(PersistedMetric{.t = double(second), .memTotal = 10});
    }
    QCOMPARE(load().unsaved.size(), std::size_t(10));
    HistoryStore(m_folder->path()).append(minute(1));
    QVERIFY(load().unsaved.empty());
}

void TestMinuteFile::aSecondStoreOnlyReads()
{
    HistoryStore first(m_folder->path());
    first.append(minute(1));
    first.loadLast(1);
    HistoryStore second(m_folder->path());
    second.append(minute(2));
    QCOMPARE(second.startLoadMinutes(600)->take(std::chrono::minutes(1))->means.size(),
             std::size_t(1));
    second.loadLast(1);
    QCOMPARE(contents(), versionLine + line(1));
}

QTEST_GUILESS_MAIN(TestMinuteFile)
#include "tst_MinuteFile.moc"
