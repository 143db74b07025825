#include "figures/MetricsFile.h"

#include "figures/MetricsText.h"
#include "sampler/SystemSampler.h"
#include "threads/BackgroundJob.h"
#include "threads/MainThread.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <functional>
#include <system_error>
#include <utility>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr QFile::Permissions readableByAll =
    QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther; // 0644

QString failureText(const QString &file, const QString &reason)
{
    return u"\"%1\" cannot be written: %2."_s.arg(file, reason);
}

/// Returns what went wrong. A link in the file's place is replaced, not followed, since others may
/// write into the folder. A file that is no longer wanted is not left behind.
std::optional<QString> writeFile(const QString &file, const QByteArray &text,
                                 const std::atomic<bool> &isWanted)
{
    QTemporaryFile target(file + ".XXXXXX"_L1);
    if (!target.open() || !target.setPermissions(readableByAll) || target.write(text) != text.size()
        || !target.flush())
        return failureText(file, target.errorString());
    if (!isWanted)
        return std::nullopt;
    if (std::rename(QFile::encodeName(target.fileName()).constData(),
                    QFile::encodeName(file).constData())
        != 0)
        return failureText(file, QString::fromStdString(std::generic_category().message(errno)));
    target.setAutoRemove(false);
    if (!isWanted)
        QFile::remove(file);
    return std::nullopt;
}

} // namespace

MetricsFile::MetricsFile(SystemSampler &sampler, QString chip, QObject *parent)
    : QObject(parent),
      m_sampler(sampler),
      m_chip(std::move(chip))
{
    assertMainThread();
    connect(&sampler, &SystemSampler::currentChanged, this, &MetricsFile::tick);
}

MetricsFile::~MetricsFile()
{
    removeFile();
}

void MetricsFile::setFolder(const QString &folder)
{
    const QString file = folder.isEmpty() ? QString() : folder + "/corvane.prom"_L1;
    if (file == m_file)
        return;
    removeFile();
    m_file = file;
    m_isWriting = false; // A job for the file before is not waited for.
    setLastError(std::nullopt);
    if (m_file.isEmpty())
        return;
    m_isWanted = std::make_shared<std::atomic<bool>>(true);
    m_interest = m_sampler.lookAtProcesses();
    m_sampler.awaitSurvey();
    write();
}

void MetricsFile::tick()
{
    if (!m_file.isEmpty() && --m_ticksToWrite <= 0 && !m_isWriting)
        write();
}

void MetricsFile::write()
{
    m_ticksToWrite = writeEveryNTicks;
    m_isWriting = true;
    const QByteArray text = metricsText(figuresOf(m_sampler.current(), m_chip),
                                        m_sampler.energy().sinceStart, m_sampler.aiWorkloads());
    runThenDeliver(
        this, [file = m_file, text, wanted = m_isWanted] { return writeFile(file, text, *wanted); },
        [this, wanted = m_isWanted](const std::optional<QString> &error) {
            if (wanted != m_isWanted)
                return;
            m_isWriting = false;
            if (error)
                m_ticksToWrite = retryAfterNTicks;
            setLastError(error);
        });
}

void MetricsFile::removeFile()
{
    if (m_isWanted)
        *m_isWanted = false;
    m_isWanted.reset();
    m_interest.reset();
    constexpr std::chrono::milliseconds patience(250);
    const std::function<bool()> remove = [file = m_file] { return QFile::remove(file); };
    if (!m_file.isEmpty())
        m_removals.call(remove, patience);
    m_file.clear();
}

void MetricsFile::setLastError(const std::optional<QString> &error)
{
    if (std::exchange(m_lastError, error) != error)
        emit lastErrorChanged();
}

QString collectorFolder(const QString &root)
{
    for (const auto place :
         {"var/lib/prometheus/node-exporter"_L1, "var/lib/node_exporter/textfile_collector"_L1,
          "var/lib/node_exporter"_L1, "opt/homebrew/var/lib/node_exporter"_L1,
          "usr/local/var/lib/node_exporter"_L1}) {
        if (const QString folder = root + place; QFileInfo(folder).isDir())
            return folder;
    }
    return {};
}

} // namespace corvane
