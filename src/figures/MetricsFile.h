#pragma once

#include "sampler/SystemSampler.h"
#include "threads/TimedCalls.h"

#include <QObject>
#include <QString>

#include <atomic>
#include <memory>
#include <optional>

namespace corvane {

/// Keeps `corvane.prom` in a folder up to date, for the textfile collector of Prometheus'
/// node_exporter: written beside it and renamed every 15 s, readable by everybody, and removed when
/// it is no longer wanted and at the end. The file work runs in the background; a removal is waited
/// for, a quarter of a second at most. Owned by the application state; main thread.
class MetricsFile : public QObject {
    Q_OBJECT

public:
    static constexpr int writeEveryNTicks = 15;
    static constexpr int retryAfterNTicks = 60;

    /// The sampler outlives this. `chip` is the chip's name.
    MetricsFile(SystemSampler &sampler, QString chip, QObject *parent = nullptr);
    ~MetricsFile() override;

    /// Writes into this folder from now on, first at once; an empty one: no more. The file in
    /// another folder is removed.
    void setFolder(const QString &folder);

    /// Why the newest attempt failed; the next follows after a minute.
    const std::optional<QString> &lastError() const { return m_lastError; }

signals:
    void lastErrorChanged();

private:
    void tick();
    void write();
    void removeFile();
    void setLastError(const std::optional<QString> &error);

    SystemSampler &m_sampler;
    const QString m_chip;
    ProcessInterest m_interest = {};                    ///< Held while a file is wanted.
    QString m_file = {};                                ///< Empty: none is wanted.
    std::shared_ptr<std::atomic<bool>> m_isWanted = {}; ///< Shared with jobs that may outlive it.
    int m_ticksToWrite = 0;
    bool m_isWriting = false;
    TimedCalls m_removals{1};
    std::optional<QString> m_lastError = {};
};

/// The first folder of this machine in which a textfile collector usually looks for files; empty if
/// there is none.
QString collectorFolder(const QString &root = QStringLiteral("/"));

} // namespace corvane
