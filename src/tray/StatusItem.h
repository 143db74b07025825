#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace corvane {

/// A colour in sRGB; every part 0…1.
struct StatusColor {
    double red = 0;
    double green = 0;
    double blue = 0;
    double opacity = 1;

    friend bool operator==(const StatusColor &, const StatusColor &) = default;
};

/// A piece of the label in one colour.
struct StatusRun {
    std::string text = {}; ///< UTF-8.
    StatusColor color = {};
    double gapAfter = 0; ///< Points between it and the next one.

    friend bool operator==(const StatusRun &, const StatusRun &) = default;
};

/// Where the item stands, as the system counts: upwards from the lower edge of the primary screen.
struct StatusPlace {
    double middle = 0; ///< Of its width.
    double bottom = 0;
    double primaryScreenHeight = 0;
};

/// What is done when the item is clicked.
struct StatusActions {
    std::function<void(const StatusPlace &)> open; ///< A click, or a press by assistive means.
    std::function<void(const StatusPlace &)>
        menu; ///< A click with the right button or with Control.
};

/// An item of its own in a Mac's menu bar, as wide as its text. Owned by the label, which shows it
/// each changed text; main thread. It stands there as long as it lives.
class StatusItem {
public:
    /// `plate` is drawn behind the text where the bar is light.
    StatusItem(StatusActions actions, const StatusColor &plate);
    ~StatusItem();

    /// `words` say the same without colours: the accessible value and the tool tip.
    void show(const std::vector<StatusRun> &runs, const std::string &words);

private:
    struct Native; ///< The system's objects.
    std::unique_ptr<Native> m_native;
};

} // namespace corvane
