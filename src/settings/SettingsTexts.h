#pragma once

#include "platform/HostSystem.h"

#include <QString>
#include <QStringList>

namespace corvane {

// The notes of the settings, with inline Markdown, in the wording for a system.

/// How the program is started at login and where else that can be changed. On Linux: `desktops` as
/// XDG_CURRENT_DESKTOP lists them, and `entry`, the file that starts the program.
QString loginNote(HostSystem system, const QStringList &desktops, const QString &entry);

/// The same for this session.
QString loginNote();

/// Where updates come from and who verifies them. A Mac's build may offer none. On Linux they come
/// with the packages, even if this build is not one.
QString updatesNote(bool isOffered, HostSystem system = hostSystem());

} // namespace corvane
