#pragma once

#include <QTemporaryDir>

#include <string>

namespace corvane::test {

/// A tree of kernel files that a test may change while it is read; deleted with the object. Paths
/// are relative to its root.
class MachineTree {
public:
    /// Creates an empty tree.
    MachineTree() = default;

    /// Copies a machine from tests/machines.
    explicit MachineTree(const std::string &machineName);

    std::string root() const { return m_folder.path().toStdString(); }

    /// Replaces the contents of a file in place, as the kernel does, or creates the file.
    void write(const std::string &path, const std::string &text) const;

    void remove(const std::string &path) const;

    /// Makes `path` a symbolic link to `target`; both are relative to the root.
    void link(const std::string &path, const std::string &target) const;

private:
    QTemporaryDir m_folder;
};

} // namespace corvane::test
