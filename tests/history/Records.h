#pragma once

#include "history/HistoryStore.h"

#include <QByteArray>
#include <QList>

namespace corvane::test {

/// A record that its time distinguishes from others.
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

/// The lines of these records in the file.
inline QByteArray lines(int first, int last)
{
    QByteArray all;
    for (int number = first; number <= last; ++number)
        all += *record(number).toJson() + '\n';
    return all;
}

inline void append(HistoryStore &store, int first, int last)
{
    for (int number = first; number <= last; ++number)
        store.append(record(number));
}

/// The numbers of the newest records in the file.
inline QList<int> loaded(HistoryStore &store, int count = 100'000)
{
    QList<int> found;
    for (const PersistedMetric &metric : store.loadLast(count))
        found.append(static_cast<int>(metric.t));
    return found;
}

/// What a new start finds.
inline QList<int> loadedAnew(const QString &directory, int count = 100'000)
{
    HistoryStore store(directory);
    return loaded(store, count);
}

} // namespace corvane::test
