#pragma once

namespace corvane {

/// Whether the process at the other end of a connected Unix socket belongs to this one's user.
bool isPeerOfSameUser(int socket);

} // namespace corvane
