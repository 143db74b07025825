#include "instance/InstanceFolder.h"

#include <QDir>
#include <QFile>

#include <optional>

#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace corvane {

namespace {

constexpr mode_t ownersOnly = 0700;

/// The folder's status; nothing for what is not there, not a folder or another user's. A link to a
/// folder is no folder: anybody may lay one.
std::optional<struct stat> ownFolder(const std::string &path)
{
    struct stat status = {};
    if (lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == geteuid())
        return status;
    return std::nullopt;
}

/// Whether the folder is there, made if need be, and closed to all others.
bool canHave(const std::string &folder)
{
    mkdir(folder.c_str(), ownersOnly);
    const auto status = ownFolder(folder);
    return status && (status->st_mode & 0777) == ownersOnly
        && instanceSocket(folder).size() < sizeof(sockaddr_un::sun_path);
}

} // namespace

std::string instanceFolder()
{
    // Where root acts for a user, the session's folder is that user's.
    const std::string runtime = qgetenv("XDG_RUNTIME_DIR").toStdString();
    const std::string inSession = runtime + "/" CORVANE_IDENTIFIER;
    if (runtime.starts_with('/') && ownFolder(runtime) && canHave(inSession))
        return inSession;
    const std::string inTemporary = QFile::encodeName(QDir::tempPath()).toStdString()
        + "/" CORVANE_IDENTIFIER "-" + std::to_string(geteuid());
    return canHave(inTemporary) ? inTemporary : std::string();
}

std::string instanceSocket(const std::string &folder)
{
    return folder + "/socket";
}

} // namespace corvane
