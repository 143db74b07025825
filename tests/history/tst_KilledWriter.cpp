#include "history/HistoryStore.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <array>
#include <chrono>
#include <iterator>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <utility>

#include <csignal>
#include <cstdlib>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace corvane;
using namespace Qt::StringLiterals;

extern char **environ;

namespace {

constexpr int kept = 20;

/// What the other process does until it is killed: it appends records with rising numbers, trims,
/// and tells on its standard output the number that it knows to be in the file.
[[noreturn]] void appendForEver(const QString &directory, int first)
{
    HistoryStore store(directory);
    for (int number = first;; ++number) {
        store.append({.t = static_cast<double>(number), .memTotal = 100, .memUsed = 50});
        if (number % 5 == 0)
            store.trim(kept);
        if (number % 7 == 0) {
            store.loadLast(1);
            if (write(STDOUT_FILENO, &number, sizeof number) != sizeof number)
                _exit(1);
        }
    }
}

/// The other process.
class Writer {
public:
    Writer(std::string program, const QString &directory, int first)
    {
        std::array<int, 2> pipeEnds = {};
        if (pipe(pipeEnds.data()) != 0)
            qFatal("no pipe");
        m_output = pipeEnds[0];
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, pipeEnds[1], STDOUT_FILENO);
        posix_spawn_file_actions_addclose(&actions, pipeEnds[0]);
        posix_spawn_file_actions_addclose(&actions, pipeEnds[1]);
        std::string directoryArgument = directory.toStdString();
        std::string firstArgument = std::to_string(first);
        std::array<char *, 4> arguments{program.data(), directoryArgument.data(),
                                        firstArgument.data(), nullptr};
        if (posix_spawn(&m_process, program.c_str(), &actions, nullptr, arguments.data(), environ)
            != 0)
            qFatal("no process");
        posix_spawn_file_actions_destroy(&actions);
        close(pipeEnds[1]);
    }
    ~Writer()
    {
        killNow();
        close(m_output);
    }
    Writer(const Writer &) = delete;
    Writer &operator=(const Writer &) = delete;

    /// The next number that is in the file; nothing when the process is gone.
    std::optional<int> next() const
    {
        int number = 0;
        return read(m_output, &number, sizeof number) == sizeof number ? std::optional(number)
                                                                       : std::nullopt;
    }

    void killNow()
    {
        if (m_process == 0)
            return;
        kill(m_process, SIGKILL);
        waitpid(std::exchange(m_process, 0), nullptr, 0);
    }

private:
    pid_t m_process = 0;
    int m_output = -1;
};

} // namespace

class TestKilledWriter : public QObject {
    Q_OBJECT

public:
    TestKilledWriter(std::string program, int instants)
        : m_program(std::move(program)),
          m_instants(instants)
    {
    }

private slots:
    void losesNoMoreThanTheRecordAtHandAndTheOneBehindACut();

private:
    std::string m_program;
    int m_instants;
};

void TestKilledWriter::losesNoMoreThanTheRecordAtHandAndTheOneBehindACut()
{
    const QTemporaryDir folder;
    const QString newName = folder.filePath(u"history.jsonl.new"_s);
    std::mt19937 random(1234);
    std::set<int> written; // All that was in the file, of this process and those before.
    int first = 1;
    bool endsInPiece = false;
    qsizetype damagedBefore = 0;
    int killedInTrims = 0;
    for (int round = 0; round < m_instants; ++round) {
        Writer writer(m_program, folder.path(), first);
        std::optional<int> number = writer.next();
        QVERIFY(number);
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 4000));
        writer.killNow();
        killedInTrims += QFile::exists(newName) ? 1 : 0;
        int known = 0;
        for (; number; number = writer.next())
            known = *number;
        for (int told = endsInPiece ? first + 1 : first; told <= known; ++told)
            written.insert(told);

        QFile file(folder.filePath(u"history.jsonl"_s));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QList<QByteArray> pieces = file.readAll().split('\n');
        endsInPiece = !pieces.last().isEmpty();
        const bool lacksOnlyItsFeed = PersistedMetric::fromJson(pieces.last()).has_value();
        pieces.removeAll(QByteArray());

        std::set<int> found;
        for (const PersistedMetric &metric : HistoryStore(folder.path()).loadLast(100'000)) {
            QVERIFY(found.empty() || metric.t > *found.rbegin());
            found.insert(static_cast<int>(metric.t));
        }
        const auto damaged = pieces.size() - static_cast<qsizetype>(found.size());
        QVERIFY2(damaged <= damagedBefore + 1, qPrintable(QString::number(damaged)));
        damagedBefore = damaged;

        // The file runs ahead of what was told. A trim leaves the newest lines, whole or not.
        written.insert(found.begin(), found.end());
        auto here = written.rbegin();
        for (qsizetype left = kept - damaged; left > 0 && here != written.rend(); --left, ++here)
            QVERIFY2(found.contains(*here), qPrintable(u"%1 in round %2"_s.arg(*here).arg(round)));
        first = *written.rbegin() + 1;
        if (lacksOnlyItsFeed) // It goes with the next one.
            written.erase(std::prev(written.end()));
    }
    QVERIFY2(killedInTrims >= m_instants / 50, qPrintable(QString::number(killedInTrims)));
    // Whatever the killed ones left is used up by the next one that trims.
    HistoryStore(folder.path()).trim(1);
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList{u"history.jsonl"_s});
}

/// With a folder and a number, the program is the other process; "--instants N" kills it as often.
int main(int argc, char **argv)
{
    if (argc == 3 && argv[1][0] == '/')
        appendForEver(QString::fromLocal8Bit(argv[1]), std::atoi(argv[2]));
    int instants = 500;
    if (argc >= 3 && qstrcmp(argv[1], "--instants") == 0) {
        instants = std::atoi(argv[2]);
        std::copy(argv + 3, argv + argc, argv + 1);
        argc -= 2;
    }
    TestKilledWriter test(argv[0], instants);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_KilledWriter.moc"
