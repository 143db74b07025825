#pragma once

#include "login/LoginItem.h"

#include <QStringList>

namespace corvane {

/// The login item of a program, given by its file, in the desktop's autostart folders. Main thread.
///
/// It is enabled if the effective entry (the user's, else a system-wide one) is started by this
/// desktop and runs this very file or a link to it. An entry for another build counts as disabled;
/// enabling the item makes the entry name this build.
LoginItem autostartItem(const QString &program);

/// Where the entry can be, whether it exists or not: the user's file first, then the system-wide
/// ones.
QStringList autostartFiles();

} // namespace corvane
