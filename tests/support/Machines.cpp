#include "support/Machines.h"

namespace corvane::test {

std::string machine(const std::string &name)
{
    return std::string(CORVANE_MACHINES "/") + name;
}

} // namespace corvane::test
