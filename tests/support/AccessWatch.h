#pragma once

#include <QHash>
#include <QStringList>

#include <string>

namespace corvane::test {

/// Tells which files below a folder were opened or read. Listing a folder or following a link does
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
    void add(const std::string &folder, const QString &shown);

    int m_descriptor = -1;
    QHash<int, QString> m_folders = {}; ///< By the number of the watch, as shown.
};

} // namespace corvane::test
