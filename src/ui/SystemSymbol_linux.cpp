#include "ui/SystemSymbol.h"

#include "threads/MainThread.h"

namespace corvane {

/// No icon theme has symbols of these names.
bool drawSystemSymbol(const std::string &, SymbolWeight, unsigned char *, int, int)
{
    assertMainThread();
    return false;
}

} // namespace corvane
