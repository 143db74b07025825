#pragma once

#include <QString>

#include <functional>
#include <optional>

namespace corvane {

/// This program's entry in the system's list of what starts at login. Main thread. A change returns
/// why it failed, as a text for the user; absent after a success. After a success the item may
/// still be disabled: a Mac's user may have to approve it.
struct LoginItem {
    std::function<bool()> isEnabled;
    std::function<std::optional<QString>()> enable;
    std::function<std::optional<QString>()> disable;
};

/// This program's own login item.
LoginItem mainLoginItem();

/// The file in which the user's login item is kept; empty where the system has no such file.
QString loginItemFile();

} // namespace corvane
