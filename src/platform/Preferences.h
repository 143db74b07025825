#pragma once

#include "threads/Mutex.h"

#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <chrono>
#include <memory>

namespace corvane {

/// The program's part of the system's store of preferences. Main thread, which waits at most twice
/// for a store that hangs or that somebody else keeps locked: until `patience` is over in the
/// constructor, and as long in the destructor for what has not been written yet.
///
/// What could not be read in time is absent. What cannot be written holds while this object lives.
/// On Linux a file that is not regular or above a mebibyte is neither read nor replaced.
class Preferences {
public:
    explicit Preferences(std::chrono::milliseconds patience = std::chrono::seconds(2));
    ~Preferences();
    Preferences(const Preferences &) = delete;
    Preferences &operator=(const Preferences &) = delete;

    /// Invalid if the key is absent.
    QVariant value(const QString &key) const { return m_values.value(key); }

    /// Returns at once; the value is written in the background.
    void setValue(const QString &key, const QVariant &value);

private:
    /// Shared with a thread that may still hang when this object is gone.
    struct Store {
        Mutex mutex;
        Condition changed;
        QVariantMap read GUARDED_BY(mutex);
        bool isRead GUARDED_BY(mutex) = false;
        QVariantMap unwritten GUARDED_BY(mutex);
        bool isWriting GUARDED_BY(mutex) = false;
    };

    static void read(Store &store);
    static void write(Store &store);
    void startWriting();

    const std::chrono::milliseconds m_patience;
    const std::shared_ptr<Store> m_store;
    QVariantMap m_values;
};

} // namespace corvane
