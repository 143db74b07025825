#pragma once

#include <string>

namespace corvane {

/// The folder by which the starts of the program by one user find each other: of that user alone,
/// made where it is missing, in the session's folder for such things or, without one, in that for
/// temporary files. Empty where no such folder can be had. Any thread.
std::string instanceFolder();

/// The socket in that folder on which the program that runs is asked.
std::string instanceSocket(const std::string &folder);

} // namespace corvane
