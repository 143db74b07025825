#include "ui/SystemSymbol.h"

namespace corvane {

/// Desktops have icon themes, none of which has these symbols.
bool drawSystemSymbol(const std::string &, unsigned char *, int, int)
{
    return false;
}

} // namespace corvane
