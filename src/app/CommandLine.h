#pragma once

#include "figures/FiguresOutput.h"

#include <QStringList>

#include <optional>

namespace corvane {

/// What a start was asked to do.
struct CommandLine {
    bool isBackground = false; ///< Opens no window by itself.
    bool asksForHelp = false;
    bool asksForVersion = false;
    std::optional<FiguresForm> figures = {}; ///< Prints these instead of showing anything.
    QString error = {}; ///< What is wrong with it, in one line; empty: nothing.
};

/// The exit status of a start with a wrong command line.
inline constexpr int wrongCommandLine = 2;

/// What these arguments ask for; the first is the program's own name. Words that begin with a
/// single dash are the window system's, as is the word that follows such a one.
CommandLine parsedCommandLine(const QStringList &arguments);

/// What `--help` prints. Needs a QCoreApplication.
QString helpText();

} // namespace corvane
