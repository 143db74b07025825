#include "history/HistoryStore.h"

#include "platform/PrivateFolder.h"
#include "threads/MainThread.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>

namespace corvane {

using namespace Qt::StringLiterals;

namespace {

/// 120 records and the cuts among them.
constexpr std::size_t mostWaitingJobs = 123;

/// More than the samples of one minute.
constexpr int newestRecords = 120;

/// Index of the first of the records at the end that are of one minute.
std::size_t startOfLastMinute(const std::vector<PersistedMetric> &records)
{
    std::size_t start = records.size();
    while (start > 0
           && spanStart(records[start - 1].t, minuteSeconds)
               == spanStart(records.back().t, minuteSeconds))
        --start;
    return start;
}

} // namespace

HistoryStore::HistoryStore(const QString &directory)
    : m_file(QFile::encodeName(directory + "/history.jsonl"_L1).toStdString()),
      m_minutes(QFile::encodeName(directory + "/minutes.jsonl"_L1).toStdString()),
      m_writer(QFile::encodeName(directory).toStdString()),
      m_queue(CORVANE_IDENTIFIER ".history", {.mostWaiting = mostWaitingJobs})
{
    assertMainThread();
    m_queue.async([this, directory] {
        QDir().mkpath(QFileInfo(directory).path());
        makePrivateFolder(QFile::encodeName(directory).toStdString());
        m_file.create();
        m_minutes.create();
    });
}

QString HistoryStore::defaultDirectory()
{
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return (data.isEmpty() ? QDir::homePath() : data) + "/Corvane"_L1;
}

void HistoryStore::append(const PersistedMetric &metric)
{
    m_queue.async([this, metric] {
        const auto line = metric.toJson();
        if (line && mayWrite())
            m_file.append(line->toStdString());
    });
}

std::vector<PersistedMetric> HistoryStore::loadLast(int n)
{
    std::vector<PersistedMetric> metrics;
    m_queue.sync([this, n, &metrics] { metrics = read(n); });
    return metrics;
}

std::shared_ptr<PendingRecords> HistoryStore::startLoad(int n)
{
    auto records = std::make_shared<PendingRecords>();
    m_queue.async([this, n, records] { records->deliver(read(n)); });
    return records;
}

std::vector<PersistedMetric> HistoryStore::read(int n) const
{
    std::vector<PersistedMetric> metrics;
    for (const std::string &line : m_file.last(static_cast<std::size_t>(std::max(n, 0)))) {
        if (const auto metric = PersistedMetric::fromJson(QByteArray::fromStdString(line)))
            metrics.push_back(*metric);
    }
    return metrics;
}

void HistoryStore::trim(int toLast)
{
    m_queue.async([this, toLast] {
        if (mayWrite())
            m_file.keepLast(static_cast<std::size_t>(std::max(toLast, 0)));
    });
}

void HistoryStore::append(const MinuteRecord &minute)
{
    m_queue.async([this, minute] {
        if (mayWrite())
            m_minutes.append(minute);
    });
}

std::shared_ptr<PendingMinutes> HistoryStore::startLoadMinutes(double now)
{
    auto minutes = std::make_shared<PendingMinutes>();
    m_queue.async([this, now, minutes] {
        minutes->deliver(readMinutes(now));
        if (mayWrite())
            m_minutes.cut();
    });
    return minutes;
}

LoadedMinutes HistoryStore::readMinutes(double now) const
{
    StoredMinutes stored = m_minutes.read(now);
    LoadedMinutes loaded{std::move(stored.means), std::move(stored.energy)};
    const std::vector<PersistedMetric> newest = read(newestRecords);
    const std::size_t last = startOfLastMinute(newest);
    std::optional<double> previous;
    for (std::size_t i = 0; i < newest.size(); ++i) {
        const double time = newest[i].t;
        const double seconds = measuredSeconds(previous.value_or(time), time);
        previous = time;
        if (!stored.hasLine(spanStart(time, minuteSeconds), i >= last))
            loaded.unsaved.push_back({newest[i].toSample(), seconds});
    }
    return loaded;
}

} // namespace corvane
