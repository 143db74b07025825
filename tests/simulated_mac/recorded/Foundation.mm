// The classes of Foundation that the Objective-C sources send messages to, on the runtime of this
// machine's compiler. Objects are never freed: sources run without reference counting here.

#include "simulated_mac/recorded/Messages.h"

#import <Foundation/Foundation.h>

#include <cstdio>

extern "C" id class_createInstance(Class kind, unsigned long extraBytes);

using namespace corvane::simulated;

namespace {

constexpr NSActivityOptions userInitiated = 0xefffff; ///< Forbids App Nap, allows the Mac to sleep.

struct Activities {
    int last = 0;
    std::set<int> held = {};
    std::set<int> napless = {}; ///< Of the held ones.
};

Activities &activities()
{
    static Activities all;
    return all;
}

void record(const std::string &message)
{
    sentMessages().push_back(message);
}

std::string hexadecimal(NSActivityOptions options)
{
    char text[32];
    std::snprintf(text, sizeof text, "0x%llx", options);
    return text;
}

} // namespace

std::vector<std::string> &corvane::simulated::sentMessages()
{
    static std::vector<std::string> all;
    return all;
}

const std::set<int> &corvane::simulated::heldActivities()
{
    return activities().held;
}

double corvane::simulated::nappedInterval(double seconds)
{
    constexpr double stretch = 8;
    return activities().napless.empty() ? stretch * seconds : seconds;
}

@implementation NSObject
+ (instancetype)alloc
{
    return class_createInstance(self, 0);
}
+ (Class)class
{
    return self;
}
- (instancetype)init
{
    return self;
}
- (BOOL)isKindOfClass:(Class)kind
{
    return isa == kind;
}
@end

@implementation NSString
+ (instancetype)stringWithUTF8String:(const char *)text
{
    (void)text;
    return [[self alloc] init];
}
- (const char *)UTF8String
{
    return "";
}
- (BOOL)isEqualToString:(NSString *)other
{
    return self.UTF8String == std::string(other.UTF8String);
}
@end

/// The class of the literals in the sources; the compiler lays them out.
@interface NSConstantString : NSString {
    const char *characters;
    unsigned length;
}
@end

@implementation NSConstantString
- (const char *)UTF8String
{
    return characters;
}
@end

@interface RecordedActivity : NSObject {
@public
    int number;
}
@end

@implementation RecordedActivity
@end

@implementation NSProcessInfo
+ (NSProcessInfo *)processInfo
{
    static NSProcessInfo *const process = [[NSProcessInfo alloc] init];
    return process;
}
- (id<NSObject>)beginActivityWithOptions:(NSActivityOptions)options reason:(NSString *)reason
{
    RecordedActivity *const activity = [[RecordedActivity alloc] init];
    activity->number = ++activities().last;
    activities().held.insert(activity->number);
    if ((options & userInitiated) == userInitiated)
        activities().napless.insert(activity->number);
    record("NSProcessInfo beginActivityWithOptions:" + hexadecimal(options)
           + " reason:" + reason.UTF8String);
    return activity;
}
- (void)endActivity:(id<NSObject>)activity
{
    const int number = static_cast<RecordedActivity *>(activity)->number;
    activities().held.erase(number);
    activities().napless.erase(number);
    record("NSProcessInfo endActivity:" + std::to_string(number));
}
@end
