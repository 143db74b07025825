#include "history/LineFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <random>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

using Lines = std::vector<std::string>;

/// The lines of a file, found by a plain split.
QList<QByteArray> pieces(const QByteArray &contents)
{
    QList<QByteArray> all = contents.split('\n');
    all.removeAll(QByteArray());
    return all;
}

Lines lastPieces(const QByteArray &contents, qsizetype count)
{
    Lines last;
    for (const QByteArray &piece : pieces(contents).last(qMin(count, pieces(contents).size())))
        last.push_back(piece.toStdString());
    return last;
}

QByteArray trimmedContents(const QByteArray &contents, qsizetype count)
{
    const QList<QByteArray> all = pieces(contents);
    if (all.size() <= count)
        return contents;
    QByteArray kept;
    for (const QByteArray &piece : all.last(count))
        kept += piece + '\n';
    return kept;
}

/// Lines of all lengths around the size of one read, with empty ones and a cut one.
QByteArray randomContents(std::mt19937 &random)
{
    QByteArray contents;
    const int lines = static_cast<int>(random() % 40);
    for (int i = 0; i < lines; ++i) {
        const bool longLine = random() % 4 == 0;
        const auto length = static_cast<qsizetype>(random() % (longLine ? 65'536 : 5));
        contents += QByteArray(length, static_cast<char>('a' + i % 26)) + '\n';
    }
    if (random() % 2 == 0)
        contents.chop(static_cast<qsizetype>(random() % 3));
    return contents;
}

} // namespace

class TestLineFile : public QObject {
    Q_OBJECT

private slots:
    void init();
    void createsAnEmptyFileOnce();
    void appendsOnlyToWhatExists();
    void appendsBehindACutLine();
    void readsAndCuts_data();
    void readsAndCuts();
    void agreesWithAPlainSplit();
    void leavesOutOverlongLines();
    void copesWithALineOfAHundredMegabytes();
    void readsTheEndOfAHugeFile();
    void leavesOutALineThatBeginsBeforeTheEndOfAHugeFile();
    void leavesAShortFileUntouched();
    void appendsOnALineOfItsOwn_data();
    void appendsOnALineOfItsOwn();
    void keepsTheFirstLineInACut_data();
    void keepsTheFirstLineInACut();
    void readsTheFirstLine_data();
    void readsTheFirstLine();
    void keepsPermissions();
    void keepsALink();
    void replacesATemporaryFileLeftBehind();
    void leavesNothingBehindWhenItCannotWrite();
    void refusesWhatIsNotAFile_data();
    void refusesWhatIsNotAFile();
    void isHarmlessWithoutAFile();

private:
    void write(const QByteArray &contents) const;
    QByteArray contents() const;
    Lines visited() const;

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
    LineFile m_file{std::string()};
};

void TestLineFile::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_path = m_folder->filePath(u"lines"_s);
    m_file = LineFile(m_path.toStdString());
}

void TestLineFile::write(const QByteArray &contents) const
{
    QFile file(m_path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(contents), contents.size());
}

QByteArray TestLineFile::contents() const
{
    QFile file(m_path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}

/// All lines, one by one.
Lines TestLineFile::visited() const
{
    Lines lines;
    m_file.forEach([&lines](std::string_view line) { lines.emplace_back(line); });
    return lines;
}

void TestLineFile::createsAnEmptyFileOnce()
{
    m_file.create();
    QCOMPARE(contents(), QByteArray());
    write("kept");
    m_file.create();
    QCOMPARE(contents(), QByteArray("kept"));
}

void TestLineFile::appendsOnlyToWhatExists()
{
    m_file.append("lost");
    QVERIFY(!QFile::exists(m_path));
    m_file.create();
    m_file.append("one");
    m_file.append("two");
    QCOMPARE(contents(), QByteArray("one\ntwo\n"));
}

void TestLineFile::appendsBehindACutLine()
{
    write("one\ntw");
    m_file.append("three");
    m_file.append("four");
    QCOMPARE(m_file.last(9), (Lines{"one", "twthree", "four"}));
}

void TestLineFile::readsAndCuts_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<int>("count");
    QTest::addColumn<QByteArray>("last"); // Joined by commas.
    QTest::addColumn<QByteArray>("after");
    const auto row = [](const char *name, const char *before, int count, const char *last,
                        const char *after) {
        QTest::newRow(name) << QByteArray(before) << count << QByteArray(last) << QByteArray(after);
    };
    row("an empty file", "", 2, "", "");
    row("fewer lines than requested", "a\n", 2, "a", "a\n");
    row("exactly as many lines as requested", "a\nb\n", 2, "a,b", "a\nb\n");
    row("one line more than requested", "a\nb\nc\n", 2, "b,c", "b\nc\n");
    row("the last one is cut", "a\nb\nc", 2, "b,c", "b\nc\n");
    row("a file of one cut line", "a", 1, "a", "a");
    row("empty lines do not count", "\n\na\n\n\nb\n\n", 2, "a,b", "\n\na\n\n\nb\n\n");
    row("empty lines are dropped with the others", "a\n\n\nb\n\nc\n\n", 2, "b,c", "b\nc\n");
    row("only empty lines", "\n\n\n", 1, "", "\n\n\n");
    row("a carriage return is part of a line", "a\r\n\r\nb\r\n", 2, "\r,b\r", "\r\nb\r\n");
    row("a line of one space", "a\n \nb\n", 2, " ,b", " \nb\n");
    row("none are requested", "a\nb\n", 0, "", "");
    row("none are requested from a file without lines", "\n", 0, "", "\n");
}

void TestLineFile::readsAndCuts()
{
    QFETCH(QByteArray, before);
    QFETCH(int, count);
    QFETCH(QByteArray, last);
    write(before);
    QByteArray joined;
    for (const std::string &line : m_file.last(static_cast<std::size_t>(count)))
        joined += (joined.isEmpty() ? "" : ",") + QByteArray::fromStdString(line);
    QCOMPARE(joined, last);
    QCOMPARE(visited(), lastPieces(before, before.size()));
    m_file.keepLast(static_cast<std::size_t>(count));
    QTEST(contents(), "after");
}

void TestLineFile::agreesWithAPlainSplit()
{
    std::mt19937 random(64'000);
    for (int i = 0; i < 50; ++i) {
        const QByteArray before = randomContents(random);
        const auto count = static_cast<int>(random() % 45);
        write(before);
        QVERIFY(m_file.last(static_cast<std::size_t>(count)) == lastPieces(before, count));
        QVERIFY(visited() == lastPieces(before, before.size()));
        m_file.keepLast(static_cast<std::size_t>(count));
        QVERIFY(contents() == trimmedContents(before, count));
    }
}

void TestLineFile::leavesOutOverlongLines()
{
    const QByteArray fits(LineFile::longestLine, 'a');
    const QByteArray tooLong(LineFile::longestLine * 5 + 1, 'b');
    write("first\n" + fits + '\n' + tooLong + "\nlast\n");
    // An overlong line counts as a line.
    QCOMPARE(m_file.last(2), Lines{"last"});
    QCOMPARE(m_file.last(3), (Lines{fits.toStdString(), "last"}));
    QCOMPARE(visited(), (Lines{"first", fits.toStdString(), "last"}));
    m_file.keepLast(2);
    QVERIFY(contents() == tooLong + "\nlast\n");
    for (const char *end : {"\nlast\n", "\n\nlast"}) {
        write(fits + 'a' + end);
        QCOMPARE(m_file.last(2), Lines{"last"});
        QCOMPARE(visited(), Lines{"last"});
    }
    // Its end lies at the beginning of a read.
    write(fits + fits + "\nlast\n");
    QCOMPARE(visited(), Lines{"last"});
    write(fits + 'a');
    QCOMPARE(visited(), Lines());
    write(fits);
    QCOMPARE(visited(), Lines{fits.toStdString()});
}

void TestLineFile::copesWithALineOfAHundredMegabytes()
{
    {
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("first\nsecond\n");
        const QByteArray megabyte(1 << 20, 'x');
        for (int i = 0; i < 100; ++i)
            QCOMPARE(file.write(megabyte), megabyte.size());
        file.write("\nlast\n");
    }
    QCOMPARE(m_file.last(60), (Lines{"first", "second", "last"}));
    QCOMPARE(m_file.last(2), Lines{"last"});
    m_file.keepLast(1);
    QCOMPARE(contents(), QByteArray("last\n"));
}

void TestLineFile::readsTheEndOfAHugeFile()
{
    // Mostly a hole, which needs no room on the disk.
    write("first\n");
    {
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.resize(qint64(5) << 30));
        QVERIFY(file.seek(file.size()));
        file.write("\nsecond\nthird\n");
    }
    QCOMPARE(m_file.last(60), (Lines{"second", "third"}));
    QCOMPARE(visited(), (Lines{"second", "third"}));
    m_file.keepLast(2); // Finds no more lines than these, so it cuts nothing.
    QVERIFY(QFile(m_path).size() > qint64(5) << 30);
    m_file.keepLast(1);
    QCOMPARE(contents(), QByteArray("third\n"));
}

void TestLineFile::leavesOutALineThatBeginsBeforeTheEndOfAHugeFile()
{
    write({});
    {
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.resize(qint64(LineFile::maxBytes)));
        QVERIFY(file.seek(90));
        file.write("\nbefore\nin it\n"); // The end begins behind "be".
        QVERIFY(file.seek(file.size() - 3));
        file.write("\nz\n" + QByteArray(90, 'y') + "\nlast");
    }
    QCOMPARE(QFile(m_path).size(), qint64(LineFile::maxBytes) + 95);
    const Lines end{"z", std::string(90, 'y'), "last"};
    QCOMPARE(m_file.last(3), end);
    Lines found = visited();
    QCOMPARE(found.front(), "in it");
    found.erase(found.begin());
    QCOMPARE(found, end);
}

void TestLineFile::leavesAShortFileUntouched()
{
    write("a\n\nb");
    struct stat before = {};
    QCOMPARE(stat(m_path.toLocal8Bit().constData(), &before), 0);
    m_file.keepLast(2);
    struct stat after = {};
    QCOMPARE(stat(m_path.toLocal8Bit().constData(), &after), 0);
    QCOMPARE(after.st_ino, before.st_ino);
    QCOMPARE(contents(), QByteArray("a\n\nb"));
}

void TestLineFile::appendsOnALineOfItsOwn_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::newRow("an empty file gets the first line") << QByteArray() << QByteArray("mark\nb\n");
    QTest::newRow("behind a whole line") << QByteArray("a\n") << QByteArray("a\nb\n");
    QTest::newRow("behind a cut line") << QByteArray("a") << QByteArray("a\nb\n");
}

void TestLineFile::appendsOnALineOfItsOwn()
{
    QFETCH(QByteArray, before);
    write(before);
    m_file.appendWhole("b", "mark");
    QTEST(contents(), "after");
}

void TestLineFile::keepsTheFirstLineInACut_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::newRow("one line too many")
        << QByteArray("mark\na\nb\nc\n") << QByteArray("mark\nb\nc\n");
    QTest::newRow("as many as are kept")
        << QByteArray("mark\na\n\nb") << QByteArray("mark\na\n\nb");
    QTest::newRow("it was damaged") << QByteArray("ma\na\nb\nc\n") << QByteArray("mark\nb\nc\n");
}

void TestLineFile::keepsTheFirstLineInACut()
{
    QFETCH(QByteArray, before);
    write(before);
    m_file.keepLast(2, "mark");
    QTEST(contents(), "after");
}

void TestLineFile::readsTheFirstLine_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("of several") << QByteArray("mark\na\n") << QByteArray("mark");
    QTest::newRow("without its line feed") << QByteArray("mark") << QByteArray("mark");
    QTest::newRow("empty") << QByteArray("\na\n") << QByteArray();
    QTest::newRow("no contents") << QByteArray() << QByteArray();
    QTest::newRow("as far as it is a few words") << QByteArray(300, 'x') + '\n'
                                                 << QByteArray(256, 'x');
}

void TestLineFile::readsTheFirstLine()
{
    QFETCH(QByteArray, contents);
    write(contents);
    QTEST(QByteArray::fromStdString(m_file.first()), "expected");
}

void TestLineFile::keepsPermissions()
{
    constexpr auto mine = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;
    for (const auto others : {QFile::Permissions(), QFile::ReadGroup | QFile::ReadOther}) {
        write("a\nb\n");
        QVERIFY(QFile::setPermissions(m_path, mine | others));
        const QFile::Permissions before = QFile::permissions(m_path);
        m_file.keepLast(1);
        QCOMPARE(contents(), QByteArray("b\n"));
        QCOMPARE(QFile::permissions(m_path), before);
    }
}

void TestLineFile::keepsALink()
{
    write("a\nb\n");
    const QString target = m_folder->filePath(u"elsewhere/lines"_s);
    QVERIFY(QDir(m_folder->path()).mkdir(u"elsewhere"_s));
    QVERIFY(QFile::rename(m_path, target));
    QVERIFY(QFile::link(target, m_path));
    m_file.append("c");
    m_file.keepLast(2);
    QVERIFY(QFile::symLinkTarget(m_path) == target);
    QCOMPARE(contents(), QByteArray("b\nc\n"));
}

void TestLineFile::replacesATemporaryFileLeftBehind()
{
    write("a\nb\nc\n");
    m_file.keepLast(2);
    const QStringList tidy =
        QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    QCOMPARE(tidy, QStringList{u"lines"_s});

    QFile left(m_path + ".new"_L1);
    QVERIFY(left.open(QIODevice::WriteOnly));
    left.write("half of what a killed process had to wri");
    left.close();
    QVERIFY(left.setPermissions(QFile::Permissions()));
    m_file.keepLast(1);
    QCOMPARE(contents(), QByteArray("c\n"));
    QVERIFY(!left.exists());
}

void TestLineFile::leavesNothingBehindWhenItCannotWrite()
{
    // A folder of the temporary file's name cannot be replaced.
    write("a\nb\n");
    QVERIFY(QDir(m_folder->path()).mkdir(u"lines.new"_s));
    m_file.keepLast(1);
    QCOMPARE(contents(), QByteArray("a\nb\n"));
    m_file.append("c");
    QCOMPARE(m_file.last(1), Lines{"c"});
}

void TestLineFile::refusesWhatIsNotAFile_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("a FIFO without a reader or writer") << u"fifo"_s;
    QTest::newRow("a folder") << u"folder"_s;
    QTest::newRow("a device that never ends") << u"/dev/zero"_s;
    QTest::newRow("a device that is always full") << u"/dev/full"_s;
    QTest::newRow("a link to a missing file") << u"/nowhere/at/all"_s;
    QTest::newRow("a link to itself") << u"lines"_s;
}

void TestLineFile::refusesWhatIsNotAFile()
{
    QFETCH(QString, kind);
    if (kind == "fifo"_L1)
        QCOMPARE(mkfifo(m_path.toLocal8Bit().constData(), 0600), 0);
    else if (kind == "folder"_L1)
        QVERIFY(QDir().mkdir(m_path));
    else
        QCOMPARE(symlink(kind.toLocal8Bit().constData(), m_path.toLocal8Bit().constData()), 0);
    m_file.create();
    m_file.append("lost");
    QVERIFY(m_file.last(60).empty());
    QVERIFY(visited().empty() && m_file.first().empty());
    m_file.appendWhole("lost", "first");
    m_file.keepLast(0);
    struct stat status = {};
    QCOMPARE(lstat(m_path.toLocal8Bit().constData(), &status), 0);
    QVERIFY(!S_ISREG(status.st_mode));
}

void TestLineFile::isHarmlessWithoutAFile()
{
    QVERIFY(m_file.last(60).empty());
    QVERIFY(visited().empty() && m_file.first().empty());
    m_file.appendWhole("lost", "first");
    m_file.keepLast(0);
    QVERIFY(!QFile::exists(m_path));
    const LineFile nowhere((m_path + "/deeper/lines"_L1).toStdString());
    nowhere.create();
    nowhere.append("lost");
    nowhere.keepLast(0);
    QVERIFY(nowhere.last(60).empty());
    QVERIFY(!QFile::exists(m_path));
}

QTEST_APPLESS_MAIN(TestLineFile)
#include "tst_LineFile.moc"
