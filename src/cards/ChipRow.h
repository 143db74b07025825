#pragma once

#include "cards/CardText.h"

#include <vector>

namespace corvane {

/// Space between the chips of a row: 18 points, or down to 8 where `chipsWidth`, the sum of their
/// widths, leaves less. `gaps` is one less than their number.
double chipSpacing(double rowWidth, double chipsWidth, int gaps = 3);

/// A dot, a label and a byte count.
struct Chip {
    QString label = {};
    QColor color = {};
    QString value = {};

    friend bool operator==(const Chip &, const Chip &) = default;
};

/// Where the parts of a chip stand in its row, in points from the left end.
struct ChipPlace {
    double dot = 0;
    double label = 0;
    double labelWidth = 0; ///< Less than the label's own where it has to be elided.
    double value = 0;
};

inline constexpr double chipDotSize = 6;

/// Where even the least spacing is too wide, labels are elided, the rightmost first.
std::vector<ChipPlace> chipPlaces(const std::vector<Chip> &chips, const QFont &labelFont,
                                  const QFont &valueFont, double rowWidth);

} // namespace corvane
