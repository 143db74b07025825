#pragma once

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace corvane::test {

/// Removes "NAME NUMBER" from a test program's arguments and returns the number; `otherwise` if it
/// is not there.
inline int takeNumber(const char *name, int otherwise, int &argc, char **argv)
{
    for (int i = 1; i + 1 < argc; ++i) {
        if (std::strcmp(argv[i], name) != 0)
            continue;
        const int number = std::atoi(argv[i + 1]);
        std::copy(argv + i + 2, argv + argc, argv + i);
        argc -= 2;
        return number;
    }
    return otherwise;
}

} // namespace corvane::test
