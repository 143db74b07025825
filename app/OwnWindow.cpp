#include "app/OwnWindow.h"

#include "app/InstanceMessage.h"

#include <QShortcut>
#include <QWidget>

namespace corvane {

void bringForward(QWidget &window)
{
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
