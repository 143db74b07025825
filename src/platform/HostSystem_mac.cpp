#include "platform/HostSystem.h"

namespace corvane {

HostSystem hostSystem()
{
    return HostSystem::mac;
}

} // namespace corvane
