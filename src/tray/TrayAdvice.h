#pragma once

#include <QString>
#include <QStringList>

#include <string_view>

namespace corvane {

/// One sentence on how to get the label on a desktop that shows no tray items. `desktops` are the
/// names in XDG_CURRENT_DESKTOP, `osRelease` is the contents of the system's os-release. Where the
/// package's name is not known for that distribution, the sentence names the extension alone.
QString trayAdvice(const QStringList &desktops, std::string_view osRelease);

/// The same for this session, with the os-release below `root`.
QString trayAdviceForSession(const QString &root = QStringLiteral("/"));

} // namespace corvane
