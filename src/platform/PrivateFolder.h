#pragma once

#include <string>

namespace corvane {

/// Creates the folder if it is missing, for its owner alone, and takes away what others may do with
/// it if it is this user's. Returns whether it is this user's alone now: false if it is missing,
/// not a folder, a link (which anybody could have made) or another user's. Any thread.
bool makePrivateFolder(const std::string &folder);

} // namespace corvane
