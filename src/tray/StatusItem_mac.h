#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace corvane {

/// A colour in sRGB; each component 0…1.
struct StatusColor {
    double red = 0;
    double green = 0;
    double blue = 0;
    double opacity = 1;

    friend bool operator==(const StatusColor &, const StatusColor &) = default;
};

/// A part of the label in one colour.
struct StatusRun {
    std::string text = {}; ///< UTF-8.
    StatusColor color = {};
    double gapAfter = 0; ///< Points between this run and the next.

    friend bool operator==(const StatusRun &, const StatusRun &) = default;
};

/// The item's position in points, in the system's coordinates: y grows upwards from the lower edge
/// of the primary screen.
struct StatusPlace {
    double middle = 0; ///< X of the item's centre.
    double bottom = 0; ///< Y of its lower edge.
    double primaryScreenHeight = 0;
};

/// Handlers of clicks on the item.
struct StatusActions {
    /// A click, or a press through the accessibility interface.
    std::function<void(const StatusPlace &)> open;
    /// A click with the right button or with Control held: returns the menu to show, an NSMenu.
    std::function<void *()> menu;
};

/// An item in a Mac's menu bar, as wide as its text. Owned by the label, which passes it each
/// changed text. It is visible as long as the object exists. Main thread.
class StatusItem {
public:
    /// `plate` is the background behind the text while the bar is light.
    StatusItem(StatusActions actions, const StatusColor &plate);
    ~StatusItem();

    /// `words` are the same values without colours: the accessible value and the tool tip.
    void show(const std::vector<StatusRun> &runs, const std::string &words);

private:
    struct Native; ///< The system's objects.
    std::unique_ptr<Native> m_native;
};

} // namespace corvane
