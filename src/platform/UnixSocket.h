#pragma once

#include "platform/FileDescriptor.h"

#include <string>

namespace corvane {

/// A new Unix stream socket, non-blocking and closed in programs that this one starts; empty on
/// failure.
FileDescriptor openUnixSocket();

/// Does the same for an accepted connection; false on failure.
bool makeNonBlocking(const FileDescriptor &socket);

/// Binds to a path and listens; a socket that a killed process left there is replaced. False on
/// failure, as with a path that is too long.
bool listenAt(const FileDescriptor &socket, const std::string &path);

/// Connects; false unless that succeeded at once, as it does where a process listens. A path that
/// begins with a NUL is one of Linux's abstract names.
bool connectTo(const FileDescriptor &socket, const std::string &path);

} // namespace corvane
