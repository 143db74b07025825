#include "platform/HostSystem.h"

namespace corvane {

HostSystem hostSystem()
{
    return HostSystem::linuxDesktop;
}

} // namespace corvane
