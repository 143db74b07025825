#include "windows/WindowStyle.h"

namespace corvane {

void hideTitleBar(NativeWindow, const QColor &) { }

} // namespace corvane
