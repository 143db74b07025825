#pragma once

#include <QApplication>

/// The font library keeps what it found out about the fonts where the checker does not look.
extern "C" __attribute__((used)) inline const char *__lsan_default_suppressions()
{
    return "leak:libfontconfig\n";
}

namespace corvane::fuzz {

/// What fonts and menus need: an application without a display, made at the first call.
inline void needApplication()
{
    static int argc = 3;
    static char name[] = "fuzz";
    static char option[] = "-platform";
    static char platform[] = "offscreen";
    static char *argv[] = {name, option, platform, nullptr};
    static const QApplication application(argc, argv);
}

} // namespace corvane::fuzz
