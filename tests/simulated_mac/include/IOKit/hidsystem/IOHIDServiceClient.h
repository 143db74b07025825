#pragma once

#include <CoreFoundation/CoreFoundation.h>

extern "C" {

typedef struct __IOHIDServiceClient *IOHIDServiceClientRef;

CFTypeRef IOHIDServiceClientCopyProperty(IOHIDServiceClientRef service, CFStringRef key);

} // extern "C"
