#include "windows/WindowTools.h"

#include "controls/Logo.h"
#include "platform/ActivationToken.h"
#include "platform/Heap.h"
#include "threads/MainThread.h"

#include <QCoreApplication>
#include <QIcon>
#include <QShortcut>
#include <QWidget>

#include <algorithm>
#include <array>
#include <string_view>

#include <stdlib.h>

namespace corvane {

namespace {

QIcon makeProgramIcon()
{
    QIcon icon;
    for (const int pixels : {16, 32, 48, 64})
        icon.addPixmap(QPixmap::fromImage(signPicture(pixels)));
    return icon;
}

/// The program's icon, for desktops that show the window's own: most on X11 do, and none finds
/// another while the program is not installed. One for all windows: Qt caches each icon that it has
/// shown.
const QIcon &programIcon()
{
    static const QIcon icon = makeProgramIcon();
    return icon;
}

} // namespace

void deleteOnClose(QWidget &window)
{
    assertMainThread();
    window.setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(&window, &QObject::destroyed, qApp, returnFreeMemory, Qt::QueuedConnection);
}

void bringForward(QWidget &window, const WindowPlatform &platform)
{
    assertMainThread();
    if (!window.testAttribute(Qt::WA_SetWindowIcon))
        window.setWindowIcon(programIcon());
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    // On a Mac Qt's activateWindow does not activate the program: its window would stay behind
    // those of the active one, without the focus.
    if (const NativeWindow native = platform.hostingWindow(window))
        platform.activate(native);
    else
        window.activateWindow();
}

void useActivationToken(const QByteArray &token)
{
    assertMainThread();
    // Qt passes the variable to the compositor with the next window that requests the focus. It
    // stands in one place: setenv would keep each token in memory for good.
    constexpr std::string_view name = "XDG_ACTIVATION_TOKEN=";
    static std::array<char, name.size() + longestActivationToken + 1> variable = {};
    const std::string_view text(token.constData(), static_cast<std::size_t>(token.size()));
    if (!isActivationToken(text))
        return;
    *std::ranges::copy(text, std::ranges::copy(name, variable.begin()).out).out = '\0';
    putenv(variable.data());
}

void closeOnControlW(QWidget &window)
{
    new QShortcut(Qt::CTRL | Qt::Key_W, &window, &window, &QWidget::close);
}

void closeOnEscape(QWidget &window)
{
    new QShortcut(Qt::Key_Escape, &window, &window, &QWidget::close);
}

} // namespace corvane
