#include "app/MenuBar.h"

#include "app/Commands.h"
#include "threads/MainThread.h"

#include <QAction>
#include <QApplication>
#include <QDesktopServices>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QUrl>

namespace corvane {

using namespace Qt::StringLiterals;

namespace {

/// Sends the key of a menu's Copy to the view with the focus, as the menu got it first. False when
/// no view takes it. An override only asks whether one would.
bool sendCopyKey(QEvent::Type type)
{
    QWidget *focus = QApplication::focusWidget();
    if (!focus)
        return false;
    QKeyEvent event(type, Qt::Key_C, Qt::ControlModifier);
    event.setAccepted(type == QEvent::KeyPress); // What a view that handles it leaves unchanged.
    QCoreApplication::sendEvent(focus, &event);
    return event.isAccepted();
}

class StandardMenus {
public:
    StandardMenus(QMenuBar &bar, const KeyWindow &keyWindow)
        : m_bar(bar),
          m_keyWindow(keyWindow) { }

    QMenu *add(const QString &title) { return m_bar.addMenu(title); }

    QAction *add(QMenu &menu, const QString &text, const QKeySequence &key, WindowCommand command)
    {
        QAction *action = menu.addAction(text);
        action->setMenuRole(QAction::NoRole);
        action->setShortcut(key);
        const auto accepts = [command, window = m_keyWindow] {
            return window.accepts(command)
                || (command == WindowCommand::copy && sendCopyKey(QEvent::ShortcutOverride));
        };
        QObject::connect(action, &QAction::triggered, action, [command, window = m_keyWindow] {
            if (command != WindowCommand::copy || !sendCopyKey(QEvent::KeyPress))
                window.perform(command);
        });
        QObject::connect(&menu, &QMenu::aboutToShow, action,
                         [action, accepts] { action->setEnabled(accepts()); });
        // Its key works in a window that gets the focus later.
        QObject::connect(&menu, &QMenu::aboutToHide, action,
                         [action] { action->setEnabled(true); });
        return action;
    }

private:
    QMenuBar &m_bar;
    const KeyWindow &m_keyWindow;
};

void addHelp(QMenu &menu)
{
    QAction *help = menu.addAction(u"Corvane Help"_s);
    help->setMenuRole(QAction::NoRole);
    QObject::connect(help, &QAction::triggered, help,
                     [] { QDesktopServices::openUrl(QUrl(QStringLiteral(CORVANE_HOMEPAGE))); });
}

} // namespace

std::unique_ptr<QMenuBar> makeMenuBar(const Commands &commands, const KeyWindow &keyWindow)
{
    assertMainThread();
    auto bar = std::make_unique<QMenuBar>();
    StandardMenus menus(*bar, keyWindow);

    QMenu *file = menus.add(u"File"_s);
    menus.add(*file, u"Close Window"_s, Qt::CTRL | Qt::Key_W, WindowCommand::close);
    file->addActions({commands.about(), commands.checkForUpdates(), commands.settings(),
                      commands.quit()}); // The system moves these to the program's menu.

    QMenu *edit = menus.add(u"Edit"_s);
    menus.add(*edit, u"Copy"_s, Qt::CTRL | Qt::Key_C, WindowCommand::copy);
    menus.add(*edit, u"Select All"_s, Qt::CTRL | Qt::Key_A, WindowCommand::selectAll);

    QMenu *view = menus.add(u"View"_s);
    view->addActions(commands.historyWindows());
    view->addSeparator();
    QAction *fullScreen = menus.add(*view, u"Enter Full Screen"_s, Qt::CTRL | Qt::META | Qt::Key_F,
                                    WindowCommand::fullScreen);
    QObject::connect(view, &QMenu::aboutToShow, fullScreen, [fullScreen, keyWindow] {
        fullScreen->setText(keyWindow.isFullScreen() ? u"Exit Full Screen"_s
                                                     : u"Enter Full Screen"_s);
    });

    QMenu *window = menus.add(u"Window"_s);
    menus.add(*window, u"Minimize"_s, Qt::CTRL | Qt::Key_M, WindowCommand::minimize);
    menus.add(*window, u"Zoom"_s, {}, WindowCommand::zoom);
    window->addSeparator();
    window->addAction(commands.openWindow());
    window->addSeparator();
    menus.add(*window, u"Bring All to Front"_s, {}, WindowCommand::bringAllToFront);

    QMenu *help = menus.add(u"Help"_s);
    addHelp(*help);
    keyWindow.registerMenus(*window, *help);
    return bar;
}

} // namespace corvane
