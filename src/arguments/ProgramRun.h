#pragma once

#include <QStringList>

#include <functional>
#include <optional>

namespace corvane {

/// The working folder of a process; absent where it cannot be read.
using FolderReader = std::function<std::optional<QString>()>;

/// What the system tells of a process that the rules look at.
struct ProcessFacts {
    QString name = {};       ///< The system's short name; Linux cuts some at 15 bytes.
    QString executable = {}; ///< Path; empty when it cannot be read.
    QStringList argv = {};
    FolderReader folder = {}; ///< Asked only for scripts that a relative path names; may be empty.
};

/// What a command line runs: a program, or a script or module of an interpreter. Pure.
struct ProgramRun {
    QString name = {};          ///< The process's, in lower case.
    QString program = {};       ///< File name of the first argument, in lower case.
    bool isInterpreter = false; ///< Python or Node.
    QString module = {};        ///< Behind Python's `-m`, in lower case; else empty.
    QString script = {};        ///< Path as given; empty when none is run.
    QStringList arguments = {}; ///< Behind program, module or script, as given.

    static ProgramRun of(const ProcessFacts &facts);

    /// File name of the script in lower case; empty when none is run.
    QString scriptName() const;

    /// Whether that is what runs: the process, its program, module or script has this name (lower
    /// case), as far as the system has not cut it.
    bool runs(QLatin1StringView wanted) const;

    /// The same for the beginning of a name.
    bool runsNamedLike(QLatin1StringView beginning) const;
};

/// Whether a name has the length at which Linux cuts names.
bool isCut(const QString &name);

/// The part of a path behind its last "/", in lower case.
QString lowerFileName(const QString &path);

} // namespace corvane
