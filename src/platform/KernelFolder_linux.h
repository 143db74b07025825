#pragma once

#include <memory>
#include <string>
#include <vector>

#include <dirent.h>

namespace corvane {

/// A folder of the kernel (Linux), open from construction to destruction.
class KernelFolder {
public:
    explicit KernelFolder(const std::string &path);

    /// False when the folder could not be opened; it then has no names and no descriptor.
    explicit operator bool() const { return m_folder != nullptr; }

    /// The next name in the kernel's order, without "." and ".."; valid until the next call. Null
    /// at the end. A name that comes or goes meanwhile may appear twice or not at all.
    const char *nextName();

    /// For `openat`.
    int descriptor() const { return m_folder ? dirfd(m_folder.get()) : -1; }

private:
    struct Closer {
        void operator()(DIR *folder) const { closedir(folder); }
    };
    std::unique_ptr<DIR, Closer> m_folder;
};

/// The names in a folder of the kernel, shorter ones first, so that the tenth of a kind comes
/// behind the second. Empty when the folder cannot be listed.
std::vector<std::string> namesInFolder(const std::string &path);

} // namespace corvane
