#pragma once

#include "login/LoginItem.h"

namespace corvane::test {

/// A login item whose state a test sets, and which refuses changes if the test wants it. It must
/// outlive its `item()`.
struct ScriptedLoginItem {
    bool isEnabled = false;
    bool needsApproval = false;          ///< Enabled, it stays off until the user approves.
    std::optional<QString> refusal = {}; ///< Error of each change; absent if changes succeed.
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
