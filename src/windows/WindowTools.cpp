#include "windows/WindowTools.h"

#include "platform/ActivationToken.h"
#include "platform/Heap.h"
#include "ui/Logo.h"

#include <QCoreApplication>
#include <QIcon>
#include <QShortcut>
#include <QWidget>

namespace corvane {

namespace {

QIcon makeSignIcon()
{
    QIcon icon;
    for (const int pixels : {16, 32, 48, 64})
        icon.addPixmap(QPixmap::fromImage(signPicture(pixels)));
    return icon;
}

/// The program's own sign, for desktops that take a window's picture from the window: most on X11
/// do, and none finds another as long as the program is not installed. One for all windows: Qt's
/// cache keeps what it has shown, so that each would cost its memory again.
const QIcon &signIcon()
{
    static const QIcon icon = makeSignIcon();
    return icon;
}

} // namespace

void deleteOnClose(QWidget &window)
{
    window.setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(&window, &QObject::destroyed, qApp, returnFreeMemory, Qt::QueuedConnection);
}

void bringForward(QWidget &window)
{
    if (!window.testAttribute(Qt::WA_SetWindowIcon))
        window.setWindowIcon(signIcon());
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
}

void useActivationToken(const QByteArray &token)
{
    // Qt hands it to the compositor with the next window that asks for the focus.
    if (isActivationToken({token.constData(), static_cast<std::size_t>(token.size())}))
        qputenv("XDG_ACTIVATION_TOKEN", token);
}

void closeOnUsualKey(QWidget &window)
{
    new QShortcut(Qt::CTRL | Qt::Key_W, &window, &window, &QWidget::close);
}

void closeOnEscape(QWidget &window)
{
    new QShortcut(Qt::Key_Escape, &window, &window, &QWidget::close);
}

} // namespace corvane
