#include "app/DesktopSession.h"

namespace corvane {

void prepareDesktopSession() { }

} // namespace corvane
