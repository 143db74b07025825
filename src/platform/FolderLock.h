#pragma once

#include "platform/FileDescriptor.h"

#include <string>

namespace corvane {

/// A lock on a folder that one process of this machine can hold. It goes with its owner or with the
/// process, however that ends, and leaves nothing behind in the folder. One thread at a time.
class FolderLock {
public:
    enum class Holder {
        self,
        other,
        nobody, ///< The folder is not there, or cannot be locked: not all file systems can.
    };

    explicit FolderLock(std::string folder);

    /// Who holds it from now on: it is taken if it is free, which it may be later than sooner.
    /// Never waits.
    Holder take();

private:
    std::string m_folder;
    FileDescriptor m_descriptor; ///< Holds the lock; empty: not held.
};

} // namespace corvane
