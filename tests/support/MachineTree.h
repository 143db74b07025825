#pragma once

#include <QTemporaryDir>

#include <string>

namespace corvane::test {

/// A tree of kernel files that a test may change while it is read; gone with the object. Paths are
/// relative to its root.
class MachineTree {
public:
    /// Empty.
    MachineTree() = default;

    /// A copy of another machine's.
    explicit MachineTree(const std::string &machineName);

    std::string root() const { return m_folder.path().toStdString(); }

    /// Replaces the contents of a file in its place, as the kernel does, or makes it.
    void write(const std::string &path, const std::string &text) const;

    void remove(const std::string &path) const;

    /// Makes `path` a link to `target`, which is relative to the root too.
    void link(const std::string &path, const std::string &target) const;

private:
    QTemporaryDir m_folder;
};

} // namespace corvane::test
