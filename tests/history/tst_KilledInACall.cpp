#include "history/HistoryStore.h"
#include "history/Records.h"
#include "support/FaultyCalls.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <functional>
#include <vector>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;
using FaultyCalls::Call;
using FaultyCalls::Moment;

namespace {

constexpr auto name = "history.jsonl";
constexpr auto newName = "history.jsonl.new";
constexpr int old = 10; // Records in the file before.
constexpr int kept = 4;

enum class Work { append, trim };

/// Where a process is killed that appends a record to the old ones, or cuts them.
struct Kill {
    const char *name = nullptr;
    Work work = {};
    std::function<void()> plan = {};
    QList<int> left = numbers(1, old);  ///< What the next start finds.
    QList<int> whole = numbers(1, old); ///< Those of them that remain after its first append.
    bool losesNext = false;             ///< Whether its first append is lost.
};

std::function<void()> at(Call call, const char *file, Moment moment)
{
    return [call, file, moment] { FaultyCalls::killAt(call, file, moment); };
}

std::function<void()> duringWrite(const char *file, std::size_t bytes)
{
    return [file, bytes] { FaultyCalls::killInNextWrite(file, bytes); };
}

const std::vector<Kill> &kills()
{
    static const auto lineSize = static_cast<std::size_t>(record(old + 1).toJson()->size());
    static const std::vector<Kill> all{
        {"before the file is open", Work::append, at(Call::open, name, Moment::before)},
        {"after the file is open", Work::append, at(Call::open, name, Moment::after)},
        {"before a record is written", Work::append, at(Call::write, name, Moment::before)},
        {.name = "in the middle of a record",
         .work = Work::append,
         .plan = duringWrite(name, lineSize / 2),
         .losesNext = true},
        {.name = "before a record's line feed",
         .work = Work::append,
         .plan = duringWrite(name, lineSize),
         .left = numbers(1, old + 1),
         .losesNext = true},
        {"after a record", Work::append, at(Call::write, name, Moment::after), numbers(1, old + 1),
         numbers(1, old + 1)},

        {"before the file to cut is open", Work::trim, at(Call::open, name, Moment::before)},
        {"before the file to cut is read", Work::trim, at(Call::read, name, Moment::before)},
        {"after the file to cut is read", Work::trim, at(Call::read, name, Moment::after)},
        {"before the new file is created", Work::trim, at(Call::open, newName, Moment::before)},
        {"after the new file is created", Work::trim, at(Call::open, newName, Moment::after)},
        {"in the middle of the new file's first line", Work::trim,
         duringWrite(newName, lineSize / 2)},
        {"after the new file's first line", Work::trim, at(Call::write, newName, Moment::after)},
        {"in the middle of the new file's second line", Work::trim,
         [] {
             FaultyCalls::killInNextWrite(newName, lineSize / 2);
             FaultyCalls::letPass(Call::write, newName, 1);
         }},
        {"before the new file is on the disk", Work::trim, at(Call::sync, newName, Moment::before)},
        {"after the new file is on the disk", Work::trim, at(Call::sync, newName, Moment::after)},
        {"before the new file takes the old one's place", Work::trim,
         at(Call::rename, name, Moment::before)},
        {"after the new file has taken the old one's place", Work::trim,
         at(Call::rename, name, Moment::after), numbers(old - kept + 1, old),
         numbers(old - kept + 1, old)},
    };
    return all;
}

/// Returns only if the process was not killed.
void runUntilKilled(const Kill &kill, const QString &folder)
{
    HistoryStore store(folder);
    store.loadLast(1);
    kill.plan();
    if (kill.work == Work::append)
        store.append(record(old + 1));
    else
        store.trim(kept);
}

} // namespace

/// Kills a process in each of the calls that an append and a trim make.
class TestKilledInACall : public QObject {
    Q_OBJECT

private slots:
    void losesAtMostTheRecordAtHandAndTheNext_data();
    void losesAtMostTheRecordAtHandAndTheNext();
};

void TestKilledInACall::losesAtMostTheRecordAtHandAndTheNext_data()
{
    QTest::addColumn<std::size_t>("index");
    for (std::size_t index = 0; index < kills().size(); ++index)
        QTest::newRow(kills()[index].name) << index;
}

void TestKilledInACall::losesAtMostTheRecordAtHandAndTheNext()
{
    QFETCH(const std::size_t, index);
    const Kill &kill = kills()[index];
    const QTemporaryDir folder;
    {
        HistoryStore store(folder.path());
        append(store, 1, old);
    }
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(),
                  {u"--run-until-killed"_s, QString::number(index), folder.path()});
    QVERIFY(process.waitForFinished(60'000));
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QCOMPARE(process.exitCode(), SIGKILL);

    HistoryStore store(folder.path());
    QCOMPARE(loaded(store), kill.left);
    append(store, 21, 23);
    QCOMPARE(loaded(store), kill.whole + numbers(kill.losesNext ? 22 : 21, 23));
    store.trim(2); // Replaces a file that the killed process left behind.
    QCOMPARE(loaded(store), numbers(22, 23));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden),
             (QStringList{QLatin1StringView(name), u"minutes.jsonl"_s}));
}

/// With "--run-until-killed INDEX FOLDER" it is the process that is killed.
int main(int argc, char **argv)
{
    if (argc == 4 && std::strcmp(argv[1], "--run-until-killed") == 0) {
        runUntilKilled(kills().at(std::stoul(argv[2])), QString::fromLocal8Bit(argv[3]));
        return 0;
    }
    const QCoreApplication application(argc, argv);
    TestKilledInACall test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_KilledInACall.moc"
