#pragma once

#include "login/LoginItem.h"

namespace corvane {

/// The login item of a program, given by its file, in the desktop's autostart folder.
///
/// It is on when the entry that counts (the user's, else a system-wide one) is started by this
/// desktop and runs this very file. A link to the file does, too; another build of the program does
/// not, and turning the item on makes the entry name this one.
LoginItem autostartItem(const QString &program);

} // namespace corvane
