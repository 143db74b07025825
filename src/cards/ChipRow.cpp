#include "cards/ChipRow.h"

#include <algorithm>
#include <cmath>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr double chipGap = 4; ///< Dot to label and label to value.
constexpr double minSpacing = 8;
constexpr double maxSpacing = 18;

} // namespace

double chipSpacing(double rowWidth, double chipsWidth, int gaps)
{
    return std::clamp(std::floor((rowWidth - chipsWidth) / std::max(gaps, 1)), minSpacing,
                      maxSpacing);
}

std::vector<ChipPlace> chipPlaces(const std::vector<Chip> &chips, const QFont &labelFont,
                                  const QFont &valueFont, double rowWidth)
{
    double chipsWidth = 0;
    for (const Chip &chip : chips) {
        chipsWidth += chipDotSize + 2 * chipGap + textWidth(chip.label, labelFont)
            + textWidth(chip.value, valueFont);
    }
    const int gaps = static_cast<int>(chips.size()) - 1;
    const double spacing = chipSpacing(rowWidth, chipsWidth, gaps);

    std::vector<ChipPlace> places(chips.size());
    double missing = std::max(chipsWidth + gaps * minSpacing - rowWidth, 0.0);
    const double ellipsis = textWidth(u"…"_s, labelFont);
    for (std::size_t i = chips.size(); i-- > 0;) {
        const double whole = textWidth(chips[i].label, labelFont);
        places[i].labelWidth = std::max(whole - missing, std::min(ellipsis, whole));
        missing -= whole - places[i].labelWidth;
    }

    double x = 0;
    for (std::size_t i = 0; i < chips.size(); ++i) {
        ChipPlace &place = places[i];
        place.dot = x;
        place.label = x + chipDotSize + chipGap;
        place.value = place.label + place.labelWidth + chipGap;
        x = place.value + textWidth(chips[i].value, valueFont) + spacing;
    }
    return places;
}

} // namespace corvane
