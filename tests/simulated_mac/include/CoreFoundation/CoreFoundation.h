#pragma once

// The part of CoreFoundation that this program uses, declared for machines without it.

#include <cstdint>

extern "C" {

typedef unsigned char Boolean;
typedef unsigned char UInt8;
typedef std::uint32_t UInt32;
typedef long CFIndex;
typedef unsigned long CFTypeID;
typedef UInt32 CFStringEncoding;
typedef CFIndex CFNumberType;

typedef const void *CFTypeRef;
typedef const struct __CFAllocator *CFAllocatorRef;
typedef const struct __CFString *CFStringRef;
typedef const struct __CFData *CFDataRef;
typedef const struct __CFNumber *CFNumberRef;
typedef const struct __CFArray *CFArrayRef;
typedef const struct __CFDictionary *CFDictionaryRef;
typedef struct __CFDictionary *CFMutableDictionaryRef;

/// The callbacks are never called by name: their addresses alone matter.
typedef struct {
    CFIndex version;
} CFDictionaryKeyCallBacks;
typedef struct {
    CFIndex version;
} CFDictionaryValueCallBacks;
extern const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
extern const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;

extern const CFAllocatorRef kCFAllocatorDefault;

enum : CFStringEncoding { kCFStringEncodingUTF8 = 0x08000100 };
enum : CFNumberType { kCFNumberSInt32Type = 3, kCFNumberSInt64Type = 4 };

CFTypeRef CFRetain(CFTypeRef object);
void CFRelease(CFTypeRef object);
CFTypeID CFGetTypeID(CFTypeRef object);

CFTypeID CFStringGetTypeID(void);
CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char *text,
                                      CFStringEncoding encoding);
CFIndex CFStringGetLength(CFStringRef string);
CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);
Boolean CFStringGetCString(CFStringRef string, char *buffer, CFIndex size,
                           CFStringEncoding encoding);
const char *CFStringGetCStringPtr(CFStringRef string, CFStringEncoding encoding);

CFTypeID CFDataGetTypeID(void);
CFIndex CFDataGetLength(CFDataRef data);
const UInt8 *CFDataGetBytePtr(CFDataRef data);

CFTypeID CFNumberGetTypeID(void);
Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void *value);
CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType type, const void *value);

CFTypeID CFDictionaryGetTypeID(void);
const void *CFDictionaryGetValue(CFDictionaryRef dictionary, const void *key);
CFDictionaryRef CFDictionaryCreate(CFAllocatorRef allocator, const void **keys, const void **values,
                                   CFIndex count, const CFDictionaryKeyCallBacks *keyCallBacks,
                                   const CFDictionaryValueCallBacks *valueCallBacks);

CFTypeID CFArrayGetTypeID(void);
CFIndex CFArrayGetCount(CFArrayRef array);
const void *CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);

/// A constant string, made once and never freed. Compiled for a Mac it is the compiler's affair.
#ifdef __APPLE__
#define CFSTR(text) (reinterpret_cast<CFStringRef>(__builtin___CFStringMakeConstantString(text)))
#else
CFStringRef CFSimulatedConstantString(const char *text);
#define CFSTR(text) CFSimulatedConstantString("" text "")
#endif

} // extern "C"
