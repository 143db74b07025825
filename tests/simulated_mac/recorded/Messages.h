#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#ifdef __OBJC__
#import <Foundation/Foundation.h>
#endif

namespace corvane::simulated {

/// What Objective-C sources sent to Apple's objects, in order: "NSProcessInfo endActivity:1".
/// Objects are numbered in the order in which they were handed out. Main thread.
std::vector<std::string> &sentMessages();

/// The messages since this was last called.
std::vector<std::string> takeMessages();

/// The activities that are held, by number.
const std::set<int> &heldActivities();

/// The seconds after which a timer of this interval fires in an accessory program without a visible
/// window: App Nap stretches it to eight times as long unless an activity is held that forbids it.
double nappedInterval(double seconds);

/// Autorelease pools that were pushed and not yet emptied.
int openPools();

/// Runs what was queued on the main queue.
void runMainQueue();

/// Posts a notification, as the system does.
void post(const std::string &notification, void *object);

/// Values of the bundle's information dictionary by key; a value may be a number instead of text.
void setBundleValue(const std::string &key, const std::string &text);
void setBundleNumber(const std::string &key, double number);
void clearBundle();

/// Sends the event that a click on the program's icon in the Dock causes. False without a handler.
bool reopen();
void forgetReopenHandler();

#ifdef __OBJC__
// For the classes of the other frameworks.

void record(const std::string &message);

/// "NSButton setToolTip:" and what was passed.
void record(id receiver, const std::string &message);

/// A text's characters, an attributed text's runs, a colour's components, else the class.
std::string described(id object);
std::string described(double number);

/// Adds to how an object is described.
void describe(id object, const std::string &text);

/// Tells the observers of this property of the object.
void changed(id object, const std::string &key);

/// Sends a message without a declaration.
void send(id target, SEL message, id argument);
#endif

} // namespace corvane::simulated
