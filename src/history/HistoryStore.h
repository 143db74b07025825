#pragma once

#include "history/LineFile.h"
#include "history/PersistedMetric.h"
#include "history/SerialQueue.h"
#include "platform/FolderLock.h"

#include <QString>

#include <vector>

namespace corvane {

/// Keeps the samples across starts in `history.jsonl`, one record a line. Owned by the sampler,
/// which uses it on the main thread; the file work runs on one serial queue, in order, and the
/// destructor waits for it. Failures are not reported: the record or operation is lost, no more.
/// While another store, of this process or another, writes into the folder, this one only reads; it
/// starts to write when the other is gone. Where folders cannot be locked it always writes.
class HistoryStore {
public:
    /// Creates the folder and an empty file where they are missing. A file that is deleted later
    /// is only created again by the next store.
    explicit HistoryStore(const QString &directory = defaultDirectory());

    /// "Corvane" in the system's folder for the user's application data.
    static QString defaultDirectory();

    /// Adds a line to the file. Returns at once.
    void append(const PersistedMetric &metric);

    /// The records among the newest `n` lines, oldest first; an older line does not take the place
    /// of a damaged one. Waits for all appends and trims before it.
    std::vector<PersistedMetric> loadLast(int n);

    /// Cuts the file to its newest `toLast` lines, damaged ones included. Returns at once.
    void trim(int toLast);

private:
    bool mayWrite() { return m_writer.take() != FolderLock::Holder::other; }

    LineFile m_file;     ///< Used on the queue only.
    FolderLock m_writer; ///< Used on the queue only. Held from the first write on.
    SerialQueue m_queue;
};

} // namespace corvane
