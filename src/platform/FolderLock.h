#pragma once

#include "platform/FileDescriptor.h"
#include "threads/OneThread.h"

#include <string>

namespace corvane {

/// A lock on a folder that one process of this machine can hold. It ends with its owner or with the
/// process, however that ends, and leaves no file in the folder. Used on one thread.
class FolderLock {
public:
    enum class Holder {
        self,
        other,
        nobody, ///< The folder is missing, or its file system has no locks.
    };

    explicit FolderLock(std::string folder);

    /// Takes the lock if it is free, and returns who holds it now. Never waits; may be called
    /// again: a lock on a folder that was replaced since does not count.
    Holder take();

private:
    bool holdsPresentFolder() const; ///< Rather than one that was moved or removed since.

    std::string m_folder;
    FileDescriptor m_descriptor; ///< Holds the lock; empty: not held.
    OneThread m_thread;
};

} // namespace corvane
