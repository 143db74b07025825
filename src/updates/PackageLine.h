#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace corvane {

/// PackageKit's state of a package: installed, available, or one of the kinds of update, whose
/// numbers lie between `available` and `blocked`.
enum class PackageInfo { installed = 1, available = 2, blocked = 9 };

/// One line of PackageKit's lists.
struct PackageLine {
    PackageInfo info = PackageInfo::available;
    QString name = {};
    QString version = {};

    bool operator==(const PackageLine &) const = default;
};

/// The line for an info word (severity in its upper half) and an id "name;version;arch;data".
/// Absent if the id is malformed, or its name or version has characters that no package manager
/// uses.
std::optional<PackageLine> packageLine(unsigned int info, const QString &id);

/// Version of the installed package; absent if none is installed.
std::optional<QString> installedVersion(const QList<PackageLine> &resolved);

/// Whether a version other than the installed one is available, newer or older.
bool hasOtherVersion(const QList<PackageLine> &resolved);

/// The version to which the system's updater would bring the package: one that is available, is not
/// the installed one and is among the updates. The package manager decides which version is newer.
std::optional<QString> updateVersion(const QList<PackageLine> &resolved,
                                     const QList<PackageLine> &updates);

} // namespace corvane
