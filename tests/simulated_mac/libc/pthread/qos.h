#pragma once

extern "C" {

typedef unsigned int qos_class_t;

enum : qos_class_t { QOS_CLASS_DEFAULT = 0x15, QOS_CLASS_UTILITY = 0x11 };

int pthread_set_qos_class_self_np(qos_class_t qosClass, int relativePriority);

} // extern "C"
