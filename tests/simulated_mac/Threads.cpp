#include "simulated_mac/Threads.h"

#include "simulated_mac/Faults.h"

#include <pthread/qos.h>

#include <cerrno>

namespace {

thread_local qos_class_t currentClass = QOS_CLASS_DEFAULT;

} // namespace

unsigned corvane::simulated::threadClass()
{
    return currentClass;
}

int pthread_set_qos_class_self_np(qos_class_t qosClass, int)
{
    using namespace corvane::simulated;
    if (faults().ask(Call::pthread_set_qos_class_self_np))
        return EPERM;
    currentClass = qosClass;
    return 0;
}
