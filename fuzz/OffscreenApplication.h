#pragma once

#include <QApplication>

namespace corvane::fuzz {

/// What fonts and menus need: an application without a display, made once and never ended.
inline void needApplication()
{
    static int argc = 3;
    static char name[] = "fuzz";
    static char option[] = "-platform";
    static char platform[] = "offscreen";
    static char *argv[] = {name, option, platform, nullptr};
    static auto *application = new QApplication(argc, argv);
    if (!application)
        __builtin_trap();
}

} // namespace corvane::fuzz
