#pragma once

namespace corvane::simulated {

/// The login items of the simulated Mac, as far as this program's own is concerned.
struct LoginItems {
    bool bundleIsSigned = true; ///< The system refuses to register any other bundle.
    bool userHasApproved = true;
    bool isRegistered = false;
};

LoginItems &loginItems();

} // namespace corvane::simulated
