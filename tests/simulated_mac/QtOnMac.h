#pragma once

// Included before every source that is checked for a Mac: what Qt declares there alone.

#include <QtCore/qglobal.h>

Q_FORWARD_DECLARE_OBJC_CLASS(NSMenu);

#define setPlatformMenu(menu)                                                                      \
    setPlatformMenu(menu);                                                                         \
    NSMenu *toNSMenu()
#include <QtWidgets/qmenu.h>
#undef setPlatformMenu
