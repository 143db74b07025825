#pragma once

// The part of IOKit's registry interface that this program uses.

#include <CoreFoundation/CoreFoundation.h>
#include <mach/mach.h>

extern "C" {

typedef mach_port_t io_object_t;
typedef io_object_t io_registry_entry_t;
typedef io_object_t io_service_t;
typedef io_object_t io_iterator_t;
typedef char io_name_t[128];
typedef UInt32 IOOptionBits;

extern const mach_port_t kIOMainPortDefault;

CFMutableDictionaryRef IOServiceMatching(const char *className);
CFMutableDictionaryRef IOServiceNameMatching(const char *name);
io_service_t IOServiceGetMatchingService(mach_port_t mainPort, CFDictionaryRef matching);
CFTypeRef IORegistryEntryCreateCFProperty(io_registry_entry_t entry, CFStringRef key,
                                          CFAllocatorRef allocator, IOOptionBits options);
kern_return_t IORegistryEntryGetChildIterator(io_registry_entry_t entry, const io_name_t plane,
                                              io_iterator_t *iterator);
io_object_t IOIteratorNext(io_iterator_t iterator);
boolean_t IOObjectConformsTo(io_object_t object, const io_name_t className);
kern_return_t IOObjectRelease(io_object_t object);

} // extern "C"
