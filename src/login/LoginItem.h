#pragma once

#include <QString>

#include <functional>
#include <optional>

namespace corvane {

/// The system's list of what starts with the user's session, as far as this program stands in it.
/// Main thread. Each change tells what went wrong, in words for the user; absent after a success.
/// What the list then says is another matter: the user may still have to agree.
struct LoginItem {
    std::function<bool()> isEnabled;
    std::function<std::optional<QString>()> enable;
    std::function<std::optional<QString>()> disable;
};

/// This program's own login item.
LoginItem mainLoginItem();

} // namespace corvane
