#pragma once

#include "history/HistoryStore.h"

#include <QList>

namespace corvane::test {

/// A record that is told from others by its time.
inline PersistedMetric record(int number)
{
    return {.t = static_cast<double>(number), .memTotal = 100, .memUsed = 50, .memPct = 50};
}

/// From the first to the last.
inline QList<int> numbers(int first, int last)
{
    QList<int> all;
    for (int number = first; number <= last; ++number)
        all.append(number);
    return all;
}

/// The numbers of the newest records in the file.
inline QList<int> loaded(HistoryStore &store, int count = 100'000)
{
    QList<int> found;
    for (const PersistedMetric &metric : store.loadLast(count))
        found.append(static_cast<int>(metric.t));
    return found;
}

} // namespace corvane::test
