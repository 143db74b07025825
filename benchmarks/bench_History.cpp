#include "Ratio.h"
#include "history/HistoryStore.h"

#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <unistd.h>

using namespace corvane;

namespace {

const PersistedMetric record{.t = 785000000.123456,
                             .memTotal = 17'179'869'184,
                             .memUsed = 8'589'934'592,
                             .memPct = 50,
                             .cpuPct = 37.51,
                             .gpuPct = 12.25,
                             .cpuW = 3.753,
                             .gpuW = 1.52,
                             .aneW = 0.125};

void bareAppend(const std::string &path, const std::string &line)
{
    const int file = open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    if (write(file, line.data(), line.size()) < 0)
        std::abort();
    close(file);
}

std::size_t bareRead(const std::string &path)
{
    static char buffer[1 << 16];
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const ssize_t count = read(file, buffer, sizeof buffer);
    close(file);
    return static_cast<std::size_t>(count);
}

/// Cuts the file to its last `length` bytes.
void bareCut(const std::string &path, std::size_t length)
{
    static char buffer[1 << 16];
    const std::string newPath = path + ".new";
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const int newFile = open(newPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    const ssize_t count = read(file, buffer, sizeof buffer);
    if (count < static_cast<ssize_t>(length) || write(newFile, buffer + count - length, length) < 0
        || fsync(newFile) != 0)
        std::abort();
    close(newFile);
    close(file);
    if (std::rename(newPath.c_str(), path.c_str()) != 0)
        std::abort();
}

/// Two empty files, one for the store's code and one for the bare calls.
struct Files {
    Files()
    {
        file.create();
        LineFile(barePath).create();
    }

    QTemporaryDir folder;
    std::string path = folder.filePath(QStringLiteral("ours")).toStdString();
    std::string barePath = folder.filePath(QStringLiteral("bare")).toStdString();
    LineFile file{path};
    std::string line = record.toJson()->toStdString() + '\n';
};

/// Writes a record as text and adds it to the file, as the store's queue does.
void append(benchmark::State &state)
{
    const Files files;
    compare(
        state, [&files] { files.file.append(record.toJson()->toStdString()); },
        [&files] { bareAppend(files.barePath, files.line); });
}

/// Loads the newest 60 records of a file of 180, as each start does.
void load(benchmark::State &state)
{
    const QTemporaryDir folder;
    HistoryStore store(folder.path());
    for (int i = 0; i < 180; ++i)
        store.append(record);
    if (store.loadLast(60).size() != 60)
        std::abort();
    const std::string path = folder.filePath(QStringLiteral("history.jsonl")).toStdString();
    compare(
        state, [&store] { benchmark::DoNotOptimize(store.loadLast(60)); },
        [&path] { benchmark::DoNotOptimize(bareRead(path)); }, processSeconds);
}

/// Cuts a file of 180 records to its newest 120, as each minute.
void trim(benchmark::State &state)
{
    const Files files;
    std::string added;
    for (int i = 0; i < 60; ++i)
        added += files.line;
    bareAppend(files.path, added + added);
    bareAppend(files.barePath, added + added);
    compare(
        state, [&files] { files.file.keepLast(120); },
        [&files] { bareCut(files.barePath, 120 * files.line.size()); }, threadSeconds,
        [&files, &added] {
            bareAppend(files.path, added);
            bareAppend(files.barePath, added);
        });
    if (files.file.last(180).size() != 120)
        std::abort();
}

/// The part of an append that runs on the main thread: the hand-over to the queue.
void handOver(benchmark::State &state)
{
    const QTemporaryDir folder;
    HistoryStore store(folder.path());
    const std::string path = folder.filePath(QStringLiteral("bare")).toStdString();
    LineFile(path).create();
    const std::string line = record.toJson()->toStdString() + '\n';
    compare(
        state, [&store] { store.append(record); }, [&path, &line] { bareAppend(path, line); });
}

} // namespace

BENCHMARK(append)->UseManualTime();
BENCHMARK(load)->UseManualTime();
BENCHMARK(trim)->UseManualTime();
BENCHMARK(handOver)->UseManualTime()->Iterations(20'000);

BENCHMARK_MAIN();
