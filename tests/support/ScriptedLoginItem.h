#pragma once

#include "login/LoginItem.h"

namespace corvane::test {

/// A list of login items that does what it is told, or refuses. It outlives its `item()`.
struct ScriptedLoginItem {
    bool isEnabled = false;
    bool needsApproval = false;          ///< By the user: switched on, it stays off.
    std::optional<QString> refusal = {}; ///< Of each change.
    int reads = 0;

    std::optional<QString> change(bool on)
    {
        if (!refusal)
            isEnabled = on && !needsApproval;
        return refusal;
    }

    LoginItem item()
    {
        return {.isEnabled = [this] { return ++reads, isEnabled; },
                .enable = [this] { return change(true); },
                .disable = [this] { return change(false); }};
    }
};

} // namespace corvane::test
