#pragma once

// The public part only: creating a client that sees every service, matching and events are declared
// by whoever uses them, as on a Mac.

#include <CoreFoundation/CoreFoundation.h>

extern "C" {

typedef struct __IOHIDEventSystemClient *IOHIDEventSystemClientRef;

CFArrayRef IOHIDEventSystemClientCopyServices(IOHIDEventSystemClientRef client);

} // extern "C"
