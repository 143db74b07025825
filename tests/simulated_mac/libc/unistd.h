#pragma once

// The system's own, and what Darwin's has beside it.

#pragma GCC system_header
#include_next <unistd.h>

extern "C" int getpeereid(int socket, uid_t *user, gid_t *group);
