#include "history/HistoryStore.h"
#include "support/NumberArgument.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <array>
#include <chrono>
#include <iterator>
#include <optional>
#include <random>
#include <set>
#include <thread>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

constexpr int kept = 20;

void sendNumber(int pipeEnd, int number)
{
    if (write(pipeEnd, &number, sizeof number) != sizeof number)
        _exit(1);
}

/// Absent at the end of the pipe.
std::optional<int> receiveNumber(int pipeEnd)
{
    int number = 0;
    return read(pipeEnd, &number, sizeof number) == sizeof number ? std::optional(number)
                                                                  : std::nullopt;
}

/// What a writer does until it is killed: it sends its process id, appends records with rising
/// numbers, trims, and sends the last number that is certain to be in the file.
[[noreturn]] void appendUntilKilled(const QString &directory, int first, int output)
{
    sendNumber(output, getpid());
    HistoryStore store(directory);
    for (int number = first;; ++number) {
        store.append({.t = static_cast<double>(number), .memTotal = 100, .memUsed = 50});
        if (number % 5 == 0)
            store.trim(kept);
        if (number % 7 == 0) {
            store.loadLast(1);
            sendNumber(output, number);
        }
    }
}

/// Processes that write the history, one after the other. They are forked from a process with a
/// single thread, which is faster than a new start of the program. Construct it before the first
/// thread.
class Writers {
public:
    explicit Writers(const QString &directory)
    {
        std::array<int, 2> requests = {};
        std::array<int, 2> answers = {};
        if (pipe(requests.data()) != 0 || pipe(answers.data()) != 0)
            qFatal("no pipe");
        m_requests = requests[1];
        m_answers = answers[0];
        m_parent = fork();
        if (m_parent != 0) {
            close(requests[0]);
            close(answers[1]);
            return;
        }
        close(m_requests);
        close(m_answers);
        while (const auto first = receiveNumber(requests[0])) {
            const pid_t writer = fork();
            if (writer == 0)
                appendUntilKilled(directory, *first, answers[1]);
            waitpid(writer, nullptr, 0);
            sendNumber(answers[1], hasEnded);
        }
        _exit(0);
    }
    ~Writers()
    {
        close(m_requests);
        close(m_answers);
        waitpid(m_parent, nullptr, 0);
    }
    Writers(const Writers &) = delete;
    Writers &operator=(const Writers &) = delete;

    /// Starts a writer that begins with this number.
    void start(int first)
    {
        sendNumber(m_requests, first);
        m_writer = receiveNumber(m_answers).value_or(0);
    }

    /// The next number that is certain to be in the file; absent when the writer has ended.
    std::optional<int> next() const
    {
        const std::optional<int> number = receiveNumber(m_answers);
        return number == hasEnded ? std::nullopt : number;
    }

    void killNow() const
    {
        if (m_writer > 0)
            kill(m_writer, SIGKILL);
    }

private:
    static constexpr int hasEnded = -1;

    pid_t m_parent = 0; ///< The process that forks the writers.
    pid_t m_writer = 0; ///< The present one.
    int m_requests = -1;
    int m_answers = -1;
};

} // namespace

class TestKilledWriter : public QObject {
    Q_OBJECT

public:
    explicit TestKilledWriter(int instants) : m_instants(instants) { }

private slots:
    void losesAtMostTheRecordAtHandAndTheNext();

private:
    const QTemporaryDir m_folder;
    Writers m_writers{m_folder.path()};
    const int m_instants;
};

void TestKilledWriter::losesAtMostTheRecordAtHandAndTheNext()
{
    const QString newName = m_folder.filePath(u"history.jsonl.new"_s);
    std::mt19937 random(1234);
    std::set<int> written; // All numbers that were in the file, from all writers.
    int first = 1;
    bool endsInPiece = false;
    qsizetype damagedBefore = 0;
    int killedInTrims = 0;
    for (int round = 0; round < m_instants; ++round) {
        m_writers.start(first);
        std::optional<int> number = m_writers.next();
        QVERIFY(number);
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 4000));
        m_writers.killNow();
        int known = 0;
        for (; number; number = m_writers.next())
            known = *number;
        killedInTrims += QFile::exists(newName) ? 1 : 0;
        for (int whole = endsInPiece ? first + 1 : first; whole <= known; ++whole)
            written.insert(whole);

        QFile file(m_folder.filePath(u"history.jsonl"_s));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QList<QByteArray> pieces = file.readAll().split('\n');
        endsInPiece = !pieces.last().isEmpty();
        const bool lacksOnlyItsFeed = PersistedMetric::fromJson(pieces.last()).has_value();
        pieces.removeAll(QByteArray());

        std::set<int> found;
        for (const PersistedMetric &metric : HistoryStore(m_folder.path()).loadLast(100'000)) {
            QVERIFY(found.empty() || metric.t > *found.rbegin());
            found.insert(static_cast<int>(metric.t));
        }
        const auto damaged = pieces.size() - static_cast<qsizetype>(found.size());
        QVERIFY2(damaged <= damagedBefore + 1, qPrintable(QString::number(damaged)));
        damagedBefore = damaged;

        // The file may hold more than was sent. A trim keeps the newest lines, damaged or not.
        written.insert(found.begin(), found.end());
        auto here = written.rbegin();
        for (qsizetype left = kept - damaged; left > 0 && here != written.rend(); --left, ++here)
            QVERIFY2(found.contains(*here), qPrintable(u"%1 in round %2"_s.arg(*here).arg(round)));
        first = *written.rbegin() + 1;
        if (lacksOnlyItsFeed) // The next append makes one damaged line of both.
            written.erase(std::prev(written.end()));
    }
    QVERIFY2(killedInTrims >= m_instants / 50, qPrintable(QString::number(killedInTrims)));
    // The next trim replaces a file that a killed writer left behind.
    HistoryStore(m_folder.path()).trim(1);
    QCOMPARE(QDir(m_folder.path()).entryList(QDir::Files),
             (QStringList{u"history.jsonl"_s, u"minutes.jsonl"_s}));
}

/// "--instants N" kills N writers instead of a few.
int main(int argc, char **argv)
{
    TestKilledWriter test(takeNumber("--instants", 50, argc, argv));
    return QTest::qExec(&test, argc, argv);
}

#include "tst_KilledWriter.moc"
