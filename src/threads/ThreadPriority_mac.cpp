#include "threads/ThreadPriority.h"

#include <pthread/qos.h>

namespace corvane {

void lowerThreadPriority()
{
    pthread_set_qos_class_self_np(QOS_CLASS_UTILITY, 0);
}

} // namespace corvane
