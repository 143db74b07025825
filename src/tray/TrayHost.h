#pragma once

#include "tray/TrayProgram.h"

namespace corvane {

/// How the label stands in a bar.
enum class LabelForm {
    text,        ///< One item with a text beside it.
    widePicture, ///< One item with one picture of all three numbers.
    squares,     ///< Three items, one number each.
};

/// In which order a bar shows the items that are new to it.
enum class ItemOrder { oldestLeft, newestLeft };

/// What a kind of bar can show.
struct TrayHost {
    LabelForm form = LabelForm::squares;
    ItemOrder order = ItemOrder::oldestLeft;

    friend bool operator==(const TrayHost &, const TrayHost &) = default;
};

/// The bar behind the tray's bus name, told by the program that owns the name. One that is not in
/// the table is taken for a bar that squeezes everything into squares, as most do.
TrayHost trayHost(const TrayProgram &program);

} // namespace corvane
