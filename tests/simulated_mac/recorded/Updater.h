#pragma once

namespace corvane::simulated {

/// The updater's framework as the program uses it.
struct Updater {
    bool canCheck = false;
    bool automaticallyChecks = false;
};

Updater &updater();

/// Changes whether a check is possible, on the thread that calls.
void letUpdaterCheck(bool canCheck);

} // namespace corvane::simulated
