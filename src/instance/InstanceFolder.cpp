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

/// The folder's status; absent if it is missing, not a folder, a link (which anybody could have
/// made) or another user's.
std::optional<struct stat> ownFolder(const std::string &path)
{
    struct stat status = {};
    if (lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == geteuid())
        return status;
    return std::nullopt;
}

/// Creates the folder if it is missing. Whether it is this user's alone and short enough for a
/// socket's path.
bool makePrivateFolder(const std::string &folder)
{
    mkdir(folder.c_str(), ownersOnly);
    const auto status = ownFolder(folder);
    return status && (status->st_mode & 0777) == ownersOnly
        && instanceSocket(folder).size() < sizeof(sockaddr_un::sun_path);
}

} // namespace

std::string instanceFolder()
{
    // Another user's when root runs the program in that user's session.
    const std::string runtime = qgetenv("XDG_RUNTIME_DIR").toStdString();
    const std::string inSession = runtime + "/" CORVANE_IDENTIFIER;
    if (runtime.starts_with('/') && ownFolder(runtime) && makePrivateFolder(inSession))
        return inSession;
    const std::string inTemporary = QFile::encodeName(QDir::tempPath()).toStdString()
        + "/" CORVANE_IDENTIFIER "-" + std::to_string(geteuid());
    return makePrivateFolder(inTemporary) ? inTemporary : std::string();
}

std::string instanceSocket(const std::string &folder)
{
    return folder + "/socket";
}

} // namespace corvane
