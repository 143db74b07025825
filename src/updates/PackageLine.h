#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace corvane {

/// What PackageKit says of a package: it is installed, can be had, or is one of the kinds of update
/// that lie between these and `blocked`.
enum class PackageInfo { installed = 1, available = 2, blocked = 9 };

/// One package that PackageKit lists.
struct PackageLine {
    PackageInfo info = PackageInfo::available;
    QString name = {};
    QString version = {};

    bool operator==(const PackageLine &) const = default;
};

/// The line of an info word (severity in its upper half) and an id "name;version;arch;data". Absent
/// for what is no id, or names what no package manager would.
std::optional<PackageLine> packageLine(unsigned int info, const QString &id);

/// Version of the package that is installed; absent if none is.
std::optional<QString> installedVersion(const QList<PackageLine> &resolved);

/// Whether some version other than the installed one can be had. Not yet an update: it may be
/// older.
bool hasOtherVersion(const QList<PackageLine> &resolved);

/// The version to which the system's updater would bring the package: one that can be had, is not
/// the installed one, and is among the updates. What is newer is left to the package manager.
std::optional<QString> updateVersion(const QList<PackageLine> &resolved,
                                     const QList<PackageLine> &updates);

} // namespace corvane
