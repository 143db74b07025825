#pragma once

#include "history/LineFile.h"
#include "history/PersistedMetric.h"
#include "history/SerialQueue.h"
#include "platform/FolderLock.h"

#include <QString>

#include <vector>

namespace corvane {

/// Keeps the samples across starts in `history.jsonl`, a line a record. Owned by the sampler, which
/// uses it on the main thread; the file work runs on one serial queue, in order, and is finished
/// when the store is gone. Failures are told to nobody: the record or operation is lost, no more.
/// While another store writes into the folder, of this process or another, this one only reads; it
/// writes from when the other is gone. Where folders cannot be locked there is no telling: it
/// writes.
class HistoryStore {
public:
    /// Creates the folder and an empty file where they are missing. A file that is deleted later
    /// stays so until the next store.
    explicit HistoryStore(const QString &directory = defaultDirectory());

    /// "Corvane" in the system's folder for the user's application data.
    static QString defaultDirectory();

    /// Returns at once.
    void append(const PersistedMetric &metric);

    /// The records among the newest `n` lines, oldest first; a damaged line is not made up for by
    /// an older one. Waits for everything handed in before.
    std::vector<PersistedMetric> loadLast(int n);

    /// Cuts the file to its newest `toLast` lines, damaged ones included. Returns at once.
    void trim(int toLast);

private:
    bool mayWrite() { return m_writer.take() != FolderLock::Holder::other; }

    LineFile m_file;     ///< Used on the queue only, once constructed.
    FolderLock m_writer; ///< Likewise. Held from the first write on.
    SerialQueue m_queue;
};

} // namespace corvane
