#pragma once

#include <set>
#include <string>
#include <vector>

namespace corvane::simulated {

/// What Objective-C sources sent to Apple's objects, in order: "NSProcessInfo endActivity:1".
/// Objects are numbered in the order in which they were handed out. Main thread.
std::vector<std::string> &sentMessages();

/// The activities that are held, by number.
const std::set<int> &heldActivities();

/// The seconds after which a timer of this interval fires in an accessory program without a visible
/// window: App Nap stretches it to eight times as long unless an activity is held that forbids it.
double nappedInterval(double seconds);

} // namespace corvane::simulated
