#pragma once

// The part of Foundation that this program uses, declared for machines without it.

#include <CoreFoundation/CoreFoundation.h>

typedef bool BOOL;
#define YES __objc_yes
#define NO __objc_no
#define nil nullptr

typedef long NSInteger;
typedef unsigned long NSUInteger;
typedef double CGFloat;

struct NSPoint {
    CGFloat x;
    CGFloat y;
};
struct NSSize {
    CGFloat width;
    CGFloat height;
};
struct NSRect {
    NSPoint origin;
    NSSize size;
};
struct NSRange {
    NSUInteger location;
    NSUInteger length;
};
static inline NSRange NSMakeRange(NSUInteger location, NSUInteger length)
{
    return {location, length};
}

typedef NSUInteger NSKeyValueObservingOptions;
enum : NSKeyValueObservingOptions {
    NSKeyValueObservingOptionNew = 1,
    NSKeyValueObservingOptionInitial = 4,
};

typedef unsigned int FourCharCode;
typedef FourCharCode AEEventClass;
typedef FourCharCode AEEventID;
enum : AEEventClass { kCoreEventClass = 'aevt' };
enum : AEEventID { kAEReopenApplication = 'rapp' };

@class NSAppleEventDescriptor, NSDictionary, NSOperationQueue, NSString;

@protocol NSObject
- (BOOL)isKindOfClass:(Class)kind;
- (BOOL)respondsToSelector:(SEL)message;
@end

@protocol NSCopying
@end

__attribute__((objc_root_class))
@interface NSObject<NSObject> {
    Class isa;
}
+ (instancetype)alloc;
+ (Class)class;
- (instancetype)init;
- (void)addObserver:(NSObject *)observer
         forKeyPath:(NSString *)keyPath
            options:(NSKeyValueObservingOptions)options
            context:(void *)context;
- (void)removeObserver:(NSObject *)observer forKeyPath:(NSString *)keyPath;
- (void)observeValueForKeyPath:(NSString *)keyPath
                      ofObject:(id)object
                        change:(NSDictionary *)change
                       context:(void *)context;
@end

@interface NSString : NSObject <NSCopying>
+ (instancetype)stringWithUTF8String:(const char *)text;
- (BOOL)isEqualToString:(NSString *)other;
@property (readonly) const char *UTF8String;
@end

@interface NSNumber : NSObject <NSCopying>
+ (NSNumber *)numberWithDouble:(double)value;
+ (NSNumber *)numberWithBool:(BOOL)value;
@end

struct NSFastEnumerationState {
    unsigned long state;
    id __unsafe_unretained *itemsPtr;
    unsigned long *mutationsPtr;
    unsigned long extra[5];
};

@interface NSArray<Element> : NSObject
+ (instancetype)arrayWithObjects:(const Element[])objects count:(NSUInteger)count;
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState *)state
                                  objects:(id __unsafe_unretained[])buffer
                                    count:(NSUInteger)count;
@property (readonly) Element firstObject;
@end

@interface NSDictionary<Key, Value> : NSObject
+ (instancetype)dictionaryWithObjects:(const Value[])objects
                              forKeys:(const Key<NSCopying>[])keys
                                count:(NSUInteger)count;
@end

@interface NSAttributedString : NSObject
- (instancetype)initWithString:(NSString *)text
                    attributes:(NSDictionary<NSString *, id> *)attributes;
@property (readonly) NSUInteger length;
@end

@interface NSMutableAttributedString : NSAttributedString
- (void)addAttribute:(NSString *)name value:(id)value range:(NSRange)range;
- (void)appendAttributedString:(NSAttributedString *)text;
@end

@interface NSError : NSObject
@property (readonly, copy) NSString *localizedDescription;
@end

@interface NSBundle : NSObject
@property (class, readonly, strong) NSBundle *mainBundle;
- (id)objectForInfoDictionaryKey:(NSString *)key;
@end

@interface NSUserDefaults : NSObject
@property (class, readonly, strong) NSUserDefaults *standardUserDefaults;
- (void)registerDefaults:(NSDictionary<NSString *, id> *)values;
@end

typedef unsigned long long NSActivityOptions;
enum : NSActivityOptions {
    NSActivityUserInitiatedAllowingIdleSystemSleep = 0xefffff,
};

@interface NSProcessInfo : NSObject
@property (class, readonly, strong) NSProcessInfo *processInfo;
- (id<NSObject>)beginActivityWithOptions:(NSActivityOptions)options reason:(NSString *)reason;
- (void)endActivity:(id<NSObject>)activity;
@end

@interface NSNotification : NSObject
@end

@interface NSNotificationCenter : NSObject
@property (class, readonly, strong) NSNotificationCenter *defaultCenter;
- (id<NSObject>)addObserverForName:(NSString *)name
                            object:(id)object
                             queue:(NSOperationQueue *)queue
                        usingBlock:(void (^)(NSNotification *notification))block;
- (void)addObserver:(id)observer selector:(SEL)selector name:(NSString *)name object:(id)object;
- (void)removeObserver:(id)observer;
@end

@interface NSThread : NSObject
@property (class, readonly) BOOL isMainThread;
@end

@interface NSOperationQueue : NSObject
@property (class, readonly, strong) NSOperationQueue *mainQueue;
- (void)addOperationWithBlock:(void (^)(void))block;
@end

@interface NSAppleEventManager : NSObject
+ (NSAppleEventManager *)sharedAppleEventManager;
- (void)setEventHandler:(id)handler
            andSelector:(SEL)selector
          forEventClass:(AEEventClass)eventClass
             andEventID:(AEEventID)eventID;
- (void)removeEventHandlerForEventClass:(AEEventClass)eventClass andEventID:(AEEventID)eventID;
@end
