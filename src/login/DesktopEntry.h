#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

namespace corvane {

/// What an autostart entry says about whether, where and what it starts. Values are decoded.
struct DesktopEntry {
    bool isApplication = true;  ///< Rather than a link or a folder.
    bool isHidden = false;      ///< Counts as deleted.
    bool isSwitchedOff = false; ///< By the settings of a desktop, with a key of its own.
    std::optional<QStringList> onlyShowIn = {};
    QStringList notShowIn = {};
    QString tryExec = {}; ///< A program that has to be there; empty: none.
    QString program = {}; ///< What it runs, `env` aside; empty: nothing.
};

/// The entry in a file of these bytes; absent if they are none.
std::optional<DesktopEntry> desktopEntry(const QByteArray &bytes);

/// Whether a session of these desktops, as XDG_CURRENT_DESKTOP lists them, starts the entry.
/// Whether the programs are there is left to the caller.
bool isStarted(const DesktopEntry &entry, const QStringList &desktops);

/// Those of this session.
QStringList currentDesktops();

/// Where the entry that starts this program with a session may lie, the user's place first.
QStringList autostartPlaces();

/// A file that starts the program, given by an absolute path without an equals sign, with every
/// session.
QByteArray autostartFile(const QString &program);

} // namespace corvane
