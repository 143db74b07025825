#pragma once

#include "tray/TrayProgram_linux.h"

namespace corvane {

/// How a bar shows the label.
enum class LabelForm {
    text,        ///< One item with a text beside its icon.
    widePicture, ///< One item with one picture of all numbers.
    squares,     ///< One square item for each number.
};

/// On which side a bar adds new items.
enum class ItemOrder { oldestLeft, newestLeft };

/// What a bar can show.
struct TrayHost {
    LabelForm form = LabelForm::squares;
    ItemOrder order = ItemOrder::oldestLeft;

    friend bool operator==(const TrayHost &, const TrayHost &) = default;
};

/// The kind of bar that this program is, being the owner of the tray's bus name. A program that is
/// not in the table is treated as a bar that scales every icon to a square, as most do.
TrayHost trayHost(const TrayProgram &program);

} // namespace corvane
