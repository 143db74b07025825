#pragma once

#include "history/LineFile.h"
#include "history/MinuteFile.h"
#include "history/Pending.h"
#include "history/PersistedMetric.h"
#include "history/SerialQueue.h"
#include "platform/FolderLock.h"

#include <QString>

#include <memory>
#include <vector>

namespace corvane {

using PendingRecords = Pending<std::vector<PersistedMetric>>;
using PendingMinutes = Pending<LoadedMinutes>;

/// Keeps the samples across starts in `history.jsonl`, one record a line, and the minutes of the
/// last week in `minutes.jsonl`. Owned by the sampler, which uses it on the main thread; the file
/// work runs on one serial queue, in order, and the destructor waits for it. Failures are not
/// reported: the record or operation is lost, no more. While the disk hangs, the newest 120 records
/// wait for it. While another store, of this process or another, writes into the folder, this one
/// only reads; it starts to write when the other is gone. Where folders cannot be locked it always
/// writes.
class HistoryStore {
public:
    /// Creates the folder and files without records where they are missing, for their owner alone,
    /// and closes those of this user to others. A file that is deleted later is only created again
    /// by the next store. Returns at once.
    explicit HistoryStore(const QString &directory = defaultDirectory());

    /// "Corvane" in the system's folder for the user's application data.
    static QString defaultDirectory();

    /// Adds a line to the file. Returns at once.
    void append(const PersistedMetric &metric);

    /// The records among the newest `n` lines, oldest first; an older line does not take the place
    /// of a damaged one. Waits for all appends and trims before it.
    std::vector<PersistedMetric> loadLast(int n);

    /// The same records, which are delivered once the disk has them. Returns at once.
    std::shared_ptr<PendingRecords> startLoad(int n);

    /// Cuts the file to its newest `toLast` lines, damaged ones included. Returns at once.
    void trim(int toLast);

    /// Adds a line to the file of the minutes. Returns at once.
    void append(const MinuteRecord &minute);

    /// What that file holds at `now`, and the samples of the other file whose minutes have no line
    /// in it. Then the file is cut to a week. Returns at once.
    std::shared_ptr<PendingMinutes> startLoadMinutes(double now);

private:
    LoadedMinutes readMinutes(double now) const;
    std::vector<PersistedMetric> read(int n) const;
    bool mayWrite() { return m_writer.take() != FolderLock::Holder::other; }

    LineFile m_file;      ///< Used on the queue only.
    MinuteFile m_minutes; ///< Used on the queue only.
    FolderLock m_writer;  ///< Used on the queue only. Held from the first write on.
    SerialQueue m_queue;
};

} // namespace corvane
