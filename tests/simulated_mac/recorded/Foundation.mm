// The classes of Foundation that the Objective-C sources send messages to, on the runtime of this
// machine's compiler. Objects are never freed: sources run without reference counting here.

#include "simulated_mac/recorded/Messages.h"

#import <AppKit/AppKit.h>

#include <Block.h>
#include <cstdio>
#include <map>
#include <utility>

extern "C" {
id class_createInstance(Class kind, unsigned long extraBytes);
const char *class_getName(Class kind);
BOOL class_respondsToSelector(Class kind, SEL message);
Class class_getSuperclass(Class kind);
void (*objc_msg_lookup(id receiver, SEL message))(void);
}

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

std::string hexadecimal(NSActivityOptions options)
{
    char text[32];
    std::snprintf(text, sizeof text, "0x%llx", options);
    return text;
}

/// What objects hold, which have no room of their own for it.
struct Held {
    std::map<id, std::string> texts = {};
    std::map<id, std::vector<id>> elements = {};
    std::map<id, std::map<std::string, id>> values = {};
    std::map<id, double> numbers = {};
    std::vector<id> objects = {}; ///< All of them, so that none counts as lost.
};

Held &held()
{
    static auto *const all = new Held; // What it refers to stays in reach to the end.
    return *all;
}

struct Observation {
    NSObject *observer;
    id object;
    std::string key;
};

std::vector<Observation> &observations()
{
    static std::vector<Observation> all;
    return all;
}

/// Of a notification: a message to an object, or a block.
struct NotificationObserver {
    id observer;
    std::string name;
    id object; ///< Nil: any.
    SEL message;
    void (^block)(NSNotification *);
};

std::vector<NotificationObserver> &notificationObservers()
{
    static auto *const all = new std::vector<NotificationObserver>;
    return *all;
}

std::vector<void (^)()> &mainQueue()
{
    static auto *const all = new std::vector<void (^)()>;
    return *all;
}

struct EventHandler {
    id handler = nil;
    SEL message = nullptr;
};

EventHandler &reopenHandler()
{
    static EventHandler handler;
    return handler;
}

std::map<std::string, id> &bundleValues()
{
    static std::map<std::string, id> all;
    return all;
}

int poolCount = 0;

} // namespace

std::vector<std::string> &corvane::simulated::sentMessages()
{
    static std::vector<std::string> all;
    return all;
}

std::vector<std::string> corvane::simulated::takeMessages()
{
    return std::exchange(sentMessages(), {});
}

void corvane::simulated::record(const std::string &message)
{
    sentMessages().push_back(message);
}

void corvane::simulated::record(id receiver, const std::string &message)
{
    record(class_getName([receiver class]) + (" " + message));
}

std::string corvane::simulated::described(double number)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", number);
    return text;
}

std::string corvane::simulated::described(id object)
{
    if (!object)
        return "nil";
    if ([object isKindOfClass:[NSString class]])
        return static_cast<NSString *>(object).UTF8String;
    if ([object isKindOfClass:[NSNumber class]])
        return described(held().numbers[object]);
    if (const auto text = held().texts.find(object); text != held().texts.end())
        return text->second;
    if (const auto values = held().values.find(object); values != held().values.end()) {
        std::string text;
        for (const auto &[key, value] : values->second)
            text += (text.empty() ? "" : ", ") + key + ": " + described(value);
        return "{" + text + "}";
    }
    return class_getName([object class]);
}

void corvane::simulated::describe(id object, const std::string &text)
{
    held().texts[object] = text;
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

int corvane::simulated::openPools()
{
    return poolCount;
}

void corvane::simulated::send(id target, SEL message, id argument)
{
    reinterpret_cast<void (*)(id, SEL, id)>(objc_msg_lookup(target, message))(target, message,
                                                                              argument);
}

void corvane::simulated::changed(id object, const std::string &key)
{
    const auto all = observations();
    for (const Observation &each : all) {
        if (each.object == object && each.key == key)
            [each.observer observeValueForKeyPath:[NSString stringWithUTF8String:key.c_str()]
                                         ofObject:object
                                           change:nil
                                          context:nullptr];
    }
}

void corvane::simulated::runMainQueue()
{
    for (auto block : std::exchange(mainQueue(), {})) {
        block();
        Block_release(block);
    }
}

void corvane::simulated::post(const std::string &notification, void *object)
{
    const auto all = notificationObservers();
    for (const NotificationObserver &each : all) {
        if (each.name != notification || (each.object && each.object != object))
            continue;
        if (each.block)
            each.block(nil);
        else
            send(each.observer, each.message, nil);
    }
}

void corvane::simulated::setBundleValue(const std::string &key, const std::string &text)
{
    bundleValues()[key] = [NSString stringWithUTF8String:text.c_str()];
}

void corvane::simulated::setBundleNumber(const std::string &key, double number)
{
    bundleValues()[key] = [NSNumber numberWithDouble:number];
}

void corvane::simulated::clearBundle()
{
    bundleValues().clear();
}

void corvane::simulated::forgetReopenHandler()
{
    reopenHandler() = {};
}

bool corvane::simulated::reopen()
{
    const auto [handler, message] = reopenHandler();
    if (!handler)
        return false;
    reinterpret_cast<void (*)(id, SEL, id, id)>(objc_msg_lookup(handler, message))(handler, message,
                                                                                   nil, nil);
    return true;
}

@implementation NSObject
+ (instancetype)alloc
{
    // Members that are C++ objects start as zeroes, which is an empty function here.
    const id made = class_createInstance(self, 0);
    held().objects.push_back(made);
    return made;
}
+ (Class)class
{
    return self;
}
- (Class)class
{
    return isa;
}
- (instancetype)init
{
    return self;
}
- (BOOL)isKindOfClass:(Class)kind
{
    for (Class each = isa; each; each = class_getSuperclass(each)) {
        if (each == kind)
            return YES;
    }
    return NO;
}
- (BOOL)respondsToSelector:(SEL)message
{
    return class_respondsToSelector(isa, message);
}
- (void)addObserver:(NSObject *)observer
         forKeyPath:(NSString *)keyPath
            options:(NSKeyValueObservingOptions)options
            context:(void *)context
{
    observations().push_back({observer, self, keyPath.UTF8String});
    if (options & NSKeyValueObservingOptionInitial)
        [observer observeValueForKeyPath:keyPath ofObject:self change:nil context:context];
}
- (void)removeObserver:(NSObject *)observer forKeyPath:(NSString *)keyPath
{
    const std::string key = keyPath.UTF8String;
    std::erase_if(observations(), [&](const Observation &each) {
        return each.observer == observer && each.object == self && each.key == key;
    });
}
- (void)observeValueForKeyPath:(NSString *)keyPath
                      ofObject:(id)object
                        change:(NSDictionary *)change
                       context:(void *)context
{
    (void)keyPath, (void)object, (void)change, (void)context;
}
@end

@implementation NSString
+ (instancetype)stringWithUTF8String:(const char *)text
{
    const id made = [[self alloc] init];
    held().texts[made] = text;
    return made;
}
- (const char *)UTF8String
{
    return held().texts[self].c_str();
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

@implementation NSNumber
+ (NSNumber *)numberWithDouble:(double)value
{
    NSNumber *const made = [[NSNumber alloc] init];
    held().numbers[made] = value;
    return made;
}
+ (NSNumber *)numberWithBool:(BOOL)value
{
    return [self numberWithDouble:value];
}
@end

@implementation NSArray
+ (instancetype)arrayWithObjects:(const id[])objects count:(NSUInteger)count
{
    const id made = [[self alloc] init];
    held().elements[made] = {objects, objects + count};
    return made;
}
- (id)firstObject
{
    const auto &elements = held().elements[self];
    return elements.empty() ? nil : elements.front();
}
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState *)state
                                  objects:(id[])buffer
                                    count:(NSUInteger)count
{
    (void)buffer, (void)count;
    static unsigned long neverChanges = 0;
    auto &elements = held().elements[self];
    if (state->state != 0)
        return 0;
    state->state = 1;
    state->itemsPtr = elements.data();
    state->mutationsPtr = &neverChanges;
    return elements.size();
}
@end

@implementation NSDictionary
+ (instancetype)dictionaryWithObjects:(const id[])objects
                              forKeys:(const id<NSCopying>[])keys
                                count:(NSUInteger)count
{
    const id made = [[self alloc] init];
    auto &values = held().values[made];
    for (NSUInteger index = 0; index < count; ++index)
        values[described(keys[index])] = objects[index];
    return made;
}
@end

// Described as "text {attributes}", and once more for each run that follows.
@implementation NSAttributedString
- (instancetype)initWithString:(NSString *)text
                    attributes:(NSDictionary<NSString *, id> *)attributes
{
    held().texts[self] = described(text) + " " + described(attributes);
    held().numbers[self] = static_cast<double>(described(text).size());
    return self;
}
- (NSUInteger)length
{
    return static_cast<NSUInteger>(held().numbers[self]);
}
@end

@implementation NSMutableAttributedString
- (void)addAttribute:(NSString *)name value:(id)value range:(NSRange)range
{
    held().texts[self] += " " + described(name) + " " + described(value) + " at "
        + std::to_string(range.location) + "+" + std::to_string(range.length);
}
- (void)appendAttributedString:(NSAttributedString *)text
{
    std::string &all = held().texts[self];
    all += (all.empty() ? "" : "; ") + described(text);
    held().numbers[self] += static_cast<double>(text.length);
}
@end

@implementation NSAttributedString (Drawing)
- (NSSize)size
{
    constexpr double characterWidth = 6.7;
    constexpr double lineHeight = 14;
    return {characterWidth * static_cast<double>(self.length), lineHeight};
}
- (void)drawAtPoint:(NSPoint)point
{
    record("draw text at " + described(point.x) + ", " + described(point.y));
}
@end

@implementation NSBundle
+ (NSBundle *)mainBundle
{
    static NSBundle *const bundle = [[NSBundle alloc] init];
    return bundle;
}
- (id)objectForInfoDictionaryKey:(NSString *)key
{
    const auto found = bundleValues().find(described(key));
    return found == bundleValues().end() ? nil : found->second;
}
@end

@implementation NSUserDefaults
+ (NSUserDefaults *)standardUserDefaults
{
    static NSUserDefaults *const defaults = [[NSUserDefaults alloc] init];
    return defaults;
}
- (void)registerDefaults:(NSDictionary<NSString *, id> *)values
{
    record(self, "registerDefaults:" + described(values));
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

@implementation NSNotification
@end

@implementation NSNotificationCenter
+ (NSNotificationCenter *)defaultCenter
{
    static NSNotificationCenter *const center = [[NSNotificationCenter alloc] init];
    return center;
}
- (id<NSObject>)addObserverForName:(NSString *)name
                            object:(id)object
                             queue:(NSOperationQueue *)queue
                        usingBlock:(void (^)(NSNotification *))block
{
    record(self,
           "addObserverForName:" + described(name) + " object:" + described(object)
               + (queue == NSOperationQueue.mainQueue ? " on the main queue" : ""));
    const id observer = [[NSObject alloc] init];
    notificationObservers().push_back(
        {observer, described(name), object, nullptr, Block_copy(block)});
    return observer;
}
- (void)addObserver:(id)observer selector:(SEL)selector name:(NSString *)name object:(id)object
{
    record(self, "addObserver:" + described(observer) + " name:" + described(name));
    notificationObservers().push_back({observer, described(name), object, selector, nil});
}
- (void)removeObserver:(id)observer
{
    record(self, "removeObserver:" + described(observer));
    std::erase_if(notificationObservers(), [observer](const NotificationObserver &each) {
        if (each.observer == observer && each.block)
            Block_release(each.block);
        return each.observer == observer;
    });
}
@end

@implementation NSOperationQueue
+ (NSOperationQueue *)mainQueue
{
    static NSOperationQueue *const queue = [[NSOperationQueue alloc] init];
    return queue;
}
- (void)addOperationWithBlock:(void (^)(void))block
{
    mainQueue().push_back(Block_copy(block));
}
@end

@implementation NSAppleEventManager
+ (NSAppleEventManager *)sharedAppleEventManager
{
    static NSAppleEventManager *const manager = [[NSAppleEventManager alloc] init];
    return manager;
}
- (void)setEventHandler:(id)handler
            andSelector:(SEL)selector
          forEventClass:(AEEventClass)eventClass
             andEventID:(AEEventID)eventID
{
    if (eventClass == kCoreEventClass && eventID == kAEReopenApplication)
        reopenHandler() = {handler, selector};
}
- (void)removeEventHandlerForEventClass:(AEEventClass)eventClass andEventID:(AEEventID)eventID
{
    if (eventClass == kCoreEventClass && eventID == kAEReopenApplication)
        reopenHandler() = {};
}
@end

/// What the compiler makes of `@autoreleasepool`.
@interface NSAutoreleasePool : NSObject
@end

@implementation NSAutoreleasePool
- (instancetype)init
{
    ++poolCount;
    return self;
}
- (void)drain
{
    --poolCount;
}
@end
