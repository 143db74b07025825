#pragma once

#include "platform/FileDescriptor.h"

#include <string>

namespace corvane {

/// A new Unix stream socket that never blocks and is not handed to other programs; empty if none
/// can be had.
FileDescriptor openUnixSocket();

/// Makes an accepted connection so too.
bool makeNonBlocking(const FileDescriptor &socket);

/// Binds to a path and listens; what a killed process left there is replaced.
bool listenAt(const FileDescriptor &socket, const std::string &path);

/// Whether the connection was made at once, as it is where somebody listens. What begins with a
/// zero is no path but one of Linux's abstract names.
bool connectTo(const FileDescriptor &socket, const std::string &path);

} // namespace corvane
