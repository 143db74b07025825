#include "simulated_mac/Faults.h"
#include "simulated_mac/Objects.h"
#include "threads/Mutex.h"

#include <algorithm>
#include <cstring>
#include <memory>

using namespace corvane::simulated;

namespace {

bool isASCII(const std::string &text)
{
    return std::all_of(text.begin(), text.end(), [](char byte) { return byte >= 0; });
}

} // namespace

const CFAllocatorRef kCFAllocatorDefault = nullptr;
const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks = {};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks = {};

CFTypeRef CFRetain(CFTypeRef object)
{
    Object::from(object).retain();
    return object;
}

void CFRelease(CFTypeRef object)
{
    Object::from(object).release();
}

CFTypeID CFGetTypeID(CFTypeRef object)
{
    return Object::from(object).type();
}

CFTypeID CFStringGetTypeID()
{
    return stringType;
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char *text, CFStringEncoding encoding)
{
    if (encoding != kCFStringEncodingUTF8)
        throw Misuse("an encoding that the simulation does not know");
    if (faults().ask(Call::CFStringCreateWithCString))
        return nullptr;
    return referenceTo<CFStringRef>(new String(text));
}

CFIndex CFStringGetLength(CFStringRef string)
{
    // UTF-16 units: one a character, two beyond the basic plane.
    CFIndex units = 0;
    for (const char byte : objectAs<String>(string).text) {
        const auto unit = static_cast<unsigned char>(byte);
        units += (unit & 0xc0) == 0x80 ? 0 : unit >= 0xf0 ? 2 : 1;
    }
    return units;
}

CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding)
{
    return length * 3;
}

Boolean CFStringGetCString(CFStringRef string, char *buffer, CFIndex size, CFStringEncoding)
{
    const std::string &text = objectAs<String>(string).text;
    if (faults().ask(Call::CFStringGetCString) || size <= static_cast<CFIndex>(text.size()))
        return false;
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return true;
}

const char *CFStringGetCStringPtr(CFStringRef string, CFStringEncoding)
{
    // As on a Mac, only where the string happens to be stored that way.
    const std::string &text = objectAs<String>(string).text;
    if (faults().ask(Call::CFStringGetCStringPtr) || !isASCII(text))
        return nullptr;
    return text.c_str();
}

CFTypeID CFDataGetTypeID()
{
    return dataType;
}

CFIndex CFDataGetLength(CFDataRef data)
{
    return static_cast<CFIndex>(objectAs<Data>(data).bytes.size());
}

const UInt8 *CFDataGetBytePtr(CFDataRef data)
{
    const auto &bytes = objectAs<Data>(data).bytes;
    return faults().ask(Call::CFDataGetBytePtr) ? nullptr : bytes.data();
}

CFTypeID CFNumberGetTypeID()
{
    return numberType;
}

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void *value)
{
    if (type != kCFNumberSInt64Type)
        throw Misuse("a number type that the simulation does not know");
    const auto fault = faults().ask(Call::CFNumberGetValue);
    if (fault == Way::error)
        return false;
    const std::int64_t whole =
        fault ? std::int64_t(faults().garbage()) << 31 : objectAs<Number>(number).value;
    std::memcpy(value, &whole, sizeof whole);
    return true;
}

CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType type, const void *value)
{
    if (faults().ask(Call::CFNumberCreate))
        return nullptr;
    std::int64_t number = 0;
    if (type == kCFNumberSInt32Type) {
        std::int32_t word = 0;
        std::memcpy(&word, value, sizeof word);
        number = word;
    } else {
        std::memcpy(&number, value, sizeof number);
    }
    return referenceTo<CFNumberRef>(new Number(number));
}

CFTypeID CFDictionaryGetTypeID()
{
    return dictionaryType;
}

const void *CFDictionaryGetValue(CFDictionaryRef dictionary, const void *key)
{
    const auto &values = objectAs<Dictionary>(dictionary).values;
    const auto found = values.find(objectAs<String>(key).text);
    return found == values.end() ? nullptr : found->second;
}

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef, const void **keys, const void **values,
                                   CFIndex count, const CFDictionaryKeyCallBacks *keyCallBacks,
                                   const CFDictionaryValueCallBacks *valueCallBacks)
{
    if (keyCallBacks != &kCFTypeDictionaryKeyCallBacks
        || valueCallBacks != &kCFTypeDictionaryValueCallBacks)
        throw Misuse("a dictionary that would not hold its objects");
    std::map<std::string, Object *> entries;
    for (CFIndex entry = 0; entry < count; ++entry)
        entries[objectAs<String>(keys[entry]).text] = &Object::from(values[entry]);
    if (faults().ask(Call::CFDictionaryCreate))
        return nullptr;
    return referenceTo<CFDictionaryRef>(new Dictionary(std::move(entries)));
}

CFTypeID CFArrayGetTypeID()
{
    return arrayType;
}

CFIndex CFArrayGetCount(CFArrayRef array)
{
    return static_cast<CFIndex>(objectAs<Array>(array).elements.size());
}

const void *CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index)
{
    const auto &elements = objectAs<Array>(array).elements;
    if (index < 0 || index >= static_cast<CFIndex>(elements.size()))
        throw Misuse("an array index out of range");
    return elements[static_cast<std::size_t>(index)];
}

CFStringRef CFSimulatedConstantString(const char *text)
{
    static corvane::Mutex mutex;
    static std::map<std::string, std::unique_ptr<String>> strings GUARDED_BY(mutex);
    const corvane::MutexLock lock(mutex);
    auto &string = strings[text];
    if (!string)
        string = std::make_unique<String>(text, Object::Lifetime::immortal);
    return referenceTo<CFStringRef>(string.get());
}
