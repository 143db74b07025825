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
constexpr int old = 10; // Records that are there before.
constexpr int kept = 4;

enum class Work { append, trim };

/// How a process dies that appends a record to those there are, or cuts them.
struct Death {
    const char *name = nullptr;
    Work work = {};
    std::function<void()> plan = {};
    QList<int> left = numbers(1, old);  ///< What the next start finds.
    QList<int> whole = numbers(1, old); ///< Of these what is still there when it has written.
    bool losesNext = false;             ///< What it writes first.
};

std::function<void()> at(Call call, const char *file, Moment moment)
{
    return [call, file, moment] { FaultyCalls::killAt(call, file, moment); };
}

std::function<void()> amidWrite(const char *file, std::size_t bytes)
{
    return [file, bytes] { FaultyCalls::killInNextWrite(file, bytes); };
}

const std::vector<Death> &deaths()
{
    static const auto lineSize = static_cast<std::size_t>(record(old + 1).toJson()->size());
    static const std::vector<Death> all{
        {"before the file is open", Work::append, at(Call::open, name, Moment::before)},
        {"with the file open", Work::append, at(Call::open, name, Moment::after)},
        {"before a record is written", Work::append, at(Call::write, name, Moment::before)},
        {.name = "amid a record",
         .work = Work::append,
         .plan = amidWrite(name, lineSize / 2),
         .losesNext = true},
        {.name = "before a record's line feed",
         .work = Work::append,
         .plan = amidWrite(name, lineSize),
         .left = numbers(1, old + 1),
         .losesNext = true},
        {"behind a record", Work::append, at(Call::write, name, Moment::after), numbers(1, old + 1),
         numbers(1, old + 1)},

        {"before the file to cut is open", Work::trim, at(Call::open, name, Moment::before)},
        {"before it is read", Work::trim, at(Call::read, name, Moment::before)},
        {"having read it", Work::trim, at(Call::read, name, Moment::after)},
        {"before the new one is made", Work::trim, at(Call::open, newName, Moment::before)},
        {"with the new one made", Work::trim, at(Call::open, newName, Moment::after)},
        {"amid its first line", Work::trim, amidWrite(newName, lineSize / 2)},
        {"behind its first line", Work::trim, at(Call::write, newName, Moment::after)},
        {"amid its second line", Work::trim,
         [] {
             FaultyCalls::killInNextWrite(newName, lineSize / 2);
             FaultyCalls::letPass(Call::write, newName, 1);
         }},
        {"before it is on the disk", Work::trim, at(Call::sync, newName, Moment::before)},
        {"with it on the disk", Work::trim, at(Call::sync, newName, Moment::after)},
        {"before it takes its place", Work::trim, at(Call::rename, name, Moment::before)},
        {"with it in its place", Work::trim, at(Call::rename, name, Moment::after),
         numbers(old - kept + 1, old), numbers(old - kept + 1, old)},
    };
    return all;
}

/// Returns only if it did not.
void die(const Death &death, const QString &folder)
{
    HistoryStore store(folder);
    store.loadLast(1);
    death.plan();
    if (death.work == Work::append)
        store.append(record(old + 1));
    else
        store.trim(kept);
}

} // namespace

/// A process is killed in one call after the other of those that an append and a trim make.
class TestKilledInACall : public QObject {
    Q_OBJECT

private slots:
    void losesNoMoreThanTheRecordAtHandAndTheOneBehindACut_data();
    void losesNoMoreThanTheRecordAtHandAndTheOneBehindACut();
};

void TestKilledInACall::losesNoMoreThanTheRecordAtHandAndTheOneBehindACut_data()
{
    QTest::addColumn<std::size_t>("index");
    for (std::size_t index = 0; index < deaths().size(); ++index)
        QTest::newRow(deaths()[index].name) << index;
}

void TestKilledInACall::losesNoMoreThanTheRecordAtHandAndTheOneBehindACut()
{
    QFETCH(const std::size_t, index);
    const Death &death = deaths()[index];
    const QTemporaryDir folder;
    {
        HistoryStore store(folder.path());
        for (int number = 1; number <= old; ++number)
            store.append(record(number));
    }
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(),
                  {u"--die"_s, QString::number(index), folder.path()});
    QVERIFY(process.waitForFinished(60'000));
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QCOMPARE(process.exitCode(), SIGKILL);

    HistoryStore store(folder.path());
    QCOMPARE(loaded(store), death.left);
    for (int number = 21; number <= 23; ++number)
        store.append(record(number));
    QCOMPARE(loaded(store), death.whole + numbers(death.losesNext ? 22 : 21, 23));
    store.trim(2); // Whatever the killed one left is used up.
    QCOMPARE(loaded(store), numbers(22, 23));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden),
             QStringList{QLatin1StringView(name)});
}

/// With "--die INDEX FOLDER" it is the process that is killed.
int main(int argc, char **argv)
{
    if (argc == 4 && std::strcmp(argv[1], "--die") == 0) {
        die(deaths().at(std::stoul(argv[2])), QString::fromLocal8Bit(argv[3]));
        return 0;
    }
    const QCoreApplication application(argc, argv);
    TestKilledInACall test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_KilledInACall.moc"
