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

} // namespace

HistoryStore::HistoryStore(const QString &directory)
    : m_file(QFile::encodeName(directory + "/history.jsonl"_L1).toStdString()),
      m_writer(QFile::encodeName(directory).toStdString()),
      m_queue(CORVANE_IDENTIFIER ".history", {.mostWaiting = mostWaitingJobs})
{
    assertMainThread();
    m_queue.async([this, directory] {
        QDir().mkpath(QFileInfo(directory).path());
        makePrivateFolder(QFile::encodeName(directory).toStdString());
        m_file.create();
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

} // namespace corvane
