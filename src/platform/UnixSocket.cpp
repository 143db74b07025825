#include "platform/UnixSocket.h"

#include <optional>

#include <cstddef>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace corvane {

namespace {

constexpr int longestQueue = 16;

/// Absent for a path that is too long.
std::optional<sockaddr_un> address(const std::string &path)
{
    sockaddr_un address = {};
    if (path.size() >= sizeof address.sun_path)
        return std::nullopt;
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, path.size());
    return address;
}

} // namespace

FileDescriptor openUnixSocket()
{
    FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM, 0));
    return makeNonBlocking(socket) ? std::move(socket) : FileDescriptor();
}

bool makeNonBlocking(const FileDescriptor &socket)
{
    return fcntl(socket.get(), F_SETFD, FD_CLOEXEC) == 0
        && fcntl(socket.get(), F_SETFL, O_NONBLOCK) == 0;
}

bool listenAt(const FileDescriptor &socket, const std::string &path)
{
    const auto place = address(path);
    if (!place)
        return false;
    unlink(path.c_str());
    return bind(socket.get(), reinterpret_cast<const sockaddr *>(&*place), sizeof *place) == 0
        && listen(socket.get(), longestQueue) == 0;
}

bool connectTo(const FileDescriptor &socket, const std::string &path)
{
    const auto place = address(path);
    // Only the bytes of the name: zeros behind it would belong to an abstract name.
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
    return place && connect(socket.get(), reinterpret_cast<const sockaddr *>(&*place), length) == 0;
}

} // namespace corvane
