#pragma once

#include "platform/HostSystem.h"

#include <QString>
#include <QStringList>

namespace corvane {

/// The notes of the settings, with inline marks, as they are true on a system.

/// How the program is started at login and where else that can be changed. The desktops are named
/// as XDG_CURRENT_DESKTOP lists them; `entry` is the file that starts the program there.
QString loginNote(HostSystem system, const QStringList &desktops, const QString &entry);

/// The same for this session.
QString loginNote();

/// Where updates come from and who answers for them. A Mac's build may offer none; on Linux they
/// come with the packages even if this build is no package.
QString updatesNote(bool isOffered, HostSystem system = hostSystem());

} // namespace corvane
