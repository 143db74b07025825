#pragma once

#include <QHash>
#include <QStringList>

#include <string>

namespace corvane::test {

/// Records which files below a folder are opened or read. Listing a folder and following a link do
/// not count. Linux.
class AccessWatch {
public:
    explicit AccessWatch(const std::string &folder);
    ~AccessWatch();
    AccessWatch(const AccessWatch &) = delete;
    AccessWatch &operator=(const AccessWatch &) = delete;

    /// The files touched since the last call, relative to the folder, each once, sorted.
    QStringList touched();

private:
    void add(const std::string &folder, const QString &relativePath);

    int m_descriptor = -1;
    QHash<int, QString> m_folders = {}; ///< Relative paths by the number of the watch.
};

} // namespace corvane::test
