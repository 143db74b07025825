#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

namespace corvane {

/// Whether an autostart entry is started, by which desktops, and which program. Values are decoded.
struct DesktopEntry {
    bool isApplication = true;  ///< False for a link or a folder.
    bool isHidden = false;      ///< The entry counts as deleted.
    bool isSwitchedOff = false; ///< By a desktop's settings: GNOME's own key.
    std::optional<QStringList> onlyShowIn = {};
    QStringList notShowIn = {};
    QString tryExec = {}; ///< A program that must exist; empty if none is named.
    QString program = {}; ///< The program that it runs, without `env`; empty if there is none.
};

/// Parses a file's bytes; absent if they hold no entry.
std::optional<DesktopEntry> desktopEntry(const QByteArray &bytes);

/// Whether a session of these desktops, as XDG_CURRENT_DESKTOP lists them, starts the entry. Does
/// not check that the programs exist.
bool isStarted(const DesktopEntry &entry, const QStringList &desktops);

/// The desktops of this session.
QStringList currentDesktops();

/// The bytes of an entry that starts a program with every session, in the background. The program
/// is given by an absolute path without an equals sign.
QByteArray autostartEntry(const QString &program);

} // namespace corvane
