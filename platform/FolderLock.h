#pragma once

#include "platform/FileDescriptor.h"

#include <string>

namespace corvane {

/// A lock on a folder that one process of this machine can hold. It goes with its owner or with the
/// process, however that ends, and leaves nothing behind in the folder. One thread at a time.
class FolderLock {
public:
    explicit FolderLock(std::string folder);

    /// Whether it is held here: taken now if it is free, which it may be later than sooner. Never
    /// waits; a folder that is not there cannot be locked.
    bool take();

private:
    std::string m_folder;
    FileDescriptor m_descriptor; ///< Holds the lock; empty: not held.
};

} // namespace corvane
