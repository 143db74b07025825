#include "ui/SystemStyle.h"

namespace corvane {

std::optional<QColor> systemSecondaryColor()
{
    return std::nullopt;
}

QString systemFontFamily()
{
    return {};
}

QString systemRoundedFamily()
{
    return {};
}

} // namespace corvane
