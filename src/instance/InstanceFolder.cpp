#include "instance/InstanceFolder.h"

#include "platform/PrivateFolder.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace corvane {

namespace {

/// Whether it is a folder of this user, and no link.
bool isOwnFolder(const std::string &path)
{
    struct stat status = {};
    return lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode)
        && status.st_uid == geteuid();
}

/// Creates the folder if it is missing. Whether it is this user's alone and short enough for a
/// socket's path.
bool makeUsableFolder(const std::string &folder)
{
    return makePrivateFolder(folder)
        && instanceSocket(folder).size() < sizeof(sockaddr_un::sun_path);
}

} // namespace

std::string instanceFolder()
{
    // Another user's when root runs the program in that user's session.
    const std::string runtime = qgetenv("XDG_RUNTIME_DIR").toStdString();
    const std::string inSession = runtime + "/" CORVANE_IDENTIFIER;
    if (runtime.starts_with('/') && isOwnFolder(runtime) && makeUsableFolder(inSession))
        return inSession;
    const std::string inTemporary = QFile::encodeName(QDir::tempPath()).toStdString()
        + "/" CORVANE_IDENTIFIER "-" + std::to_string(geteuid());
    return makeUsableFolder(inTemporary) ? inTemporary : std::string();
}

std::string instanceSocket(const std::string &folder)
{
    return folder + "/socket";
}

} // namespace corvane
