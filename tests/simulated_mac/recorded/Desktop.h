#pragma once

#include <string>
#include <vector>

namespace corvane::simulated {

/// A Mac's desktop as far as AppKit's objects show it. Set and read by tests; main thread.
struct Desktop {
    bool barIsLight = false;
    bool isActive = false; ///< The program.
    bool isHidden = false;
    void *keyWindow = nullptr;
    std::string symbol = "cpu"; ///< The only one that the system has.
    double symbolWidth = 20;
    double symbolHeight = 10;
    bool hasRoundedFont = true;
    bool hasScreen = true;
    bool preventsActivation = true; ///< Whether windows take the message that says so.
};

Desktop &desktop();

/// As it is at the start, without windows.
void resetDesktop();

/// Makes the application object, as Qt does.
void useApplication();

// The status item.

enum class ItemClick { left, withControl, right, accessibility };

/// Sends the item's action. False while the item has none.
bool clickItem(ItemClick click);

/// Changes the bar and tells who observes it.
void makeBarLight(bool isLight);

/// Draws the item's picture and records that; "" or the picture's size.
std::string drawItem();

// Windows: an address stands for each.

struct WindowState {
    unsigned long styleMask = 0;
    unsigned long collectionBehavior = 0;
    bool isVisible = true;
    bool isMiniaturized = false;
    bool focusIsOnText = false;
};

void *addWindow(const WindowState &state);
WindowState &stateOf(void *window);

/// A menu's address.
void *makeMenu();

} // namespace corvane::simulated
