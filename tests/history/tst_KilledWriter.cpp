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
#include <thread>

#include <csignal>
#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

constexpr int kept = 20;

/// What goes through pipes.
void tell(int pipeEnd, int number)
{
    if (write(pipeEnd, &number, sizeof number) != sizeof number)
        _exit(1);
}

std::optional<int> told(int pipeEnd)
{
    int number = 0;
    return read(pipeEnd, &number, sizeof number) == sizeof number ? std::optional(number)
                                                                  : std::nullopt;
}

/// What a writer does until it is killed: it tells its process, appends records with rising
/// numbers, trims, and tells the number that it knows to be in the file.
[[noreturn]] void appendForEver(const QString &directory, int first, int output)
{
    tell(output, getpid());
    HistoryStore store(directory);
    for (int number = first;; ++number) {
        store.append({.t = static_cast<double>(number), .memTotal = 100, .memUsed = 50});
        if (number % 5 == 0)
            store.trim(kept);
        if (number % 7 == 0) {
            store.loadLast(1);
            tell(output, number);
        }
    }
}

/// Processes that write the history, one after the other. They come from one that has a single
/// thread, which is quicker than to load the program each time. To be made before the first thread.
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
        while (const auto first = told(requests[0])) {
            const pid_t writer = fork();
            if (writer == 0)
                appendForEver(directory, *first, answers[1]);
            waitpid(writer, nullptr, 0);
            tell(answers[1], hasEnded);
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

    /// The next one, which begins with this number.
    void start(int first)
    {
        tell(m_requests, first);
        m_writer = told(m_answers).value_or(0);
    }

    /// The next number that is in the file; nothing when the writer is gone.
    std::optional<int> next() const
    {
        const std::optional<int> number = told(m_answers);
        return number == hasEnded ? std::nullopt : number;
    }

    void killNow() const
    {
        if (m_writer > 0)
            kill(m_writer, SIGKILL);
    }

private:
    static constexpr int hasEnded = -1;

    pid_t m_parent = 0; ///< Of the writers.
    pid_t m_writer = 0;
    int m_requests = -1;
    int m_answers = -1;
};

} // namespace

class TestKilledWriter : public QObject {
    Q_OBJECT

public:
    explicit TestKilledWriter(int instants) : m_instants(instants) { }

private slots:
    void losesNoMoreThanTheRecordAtHandAndTheOneBehindACut();

private:
    const QTemporaryDir m_folder;
    Writers m_writers{m_folder.path()};
    const int m_instants;
};

void TestKilledWriter::losesNoMoreThanTheRecordAtHandAndTheOneBehindACut()
{
    const QString newName = m_folder.filePath(u"history.jsonl.new"_s);
    std::mt19937 random(1234);
    std::set<int> written; // All that was in the file, of this process and those before.
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
    HistoryStore(m_folder.path()).trim(1);
    QCOMPARE(QDir(m_folder.path()).entryList(QDir::Files), QStringList{u"history.jsonl"_s});
}

/// "--instants N" kills as often.
int main(int argc, char **argv)
{
    int instants = 500;
    if (argc >= 3 && qstrcmp(argv[1], "--instants") == 0) {
        instants = std::atoi(argv[2]);
        std::copy(argv + 3, argv + argc, argv + 1);
        argc -= 2;
    }
    TestKilledWriter test(instants);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_KilledWriter.moc"
