#pragma once

#include <string>

namespace corvane {

/// The folder through which one user's starts of the program find each other. Only that user can
/// enter it. It is created if it is missing, in the session's runtime folder or, without one, in
/// the folder for temporary files. Empty if neither is possible. Any thread.
std::string instanceFolder();

/// Path of the running program's socket in that folder.
std::string instanceSocket(const std::string &folder);

} // namespace corvane
