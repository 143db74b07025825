#include "app/WindowStyle.h"

namespace corvane {

void hideTitleBar(NativeWindow, const QColor &) { }

} // namespace corvane
