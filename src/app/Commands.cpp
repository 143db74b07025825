#include "app/Commands.h"

#include "dashboard/WindowChoice.h"
#include "threads/MainThread.h"
#include "updates/UpdaterManager.h"

#include <QAction>
#include <QActionGroup>

#include <algorithm>

namespace corvane {

using namespace Qt::StringLiterals;

namespace {

/// The command names a newer version that was found, since every user sees the menus.
QString updatesText(const std::optional<QString> &availableVersion)
{
    return availableVersion ? u"Corvane %1 Is Available…"_s.arg(*availableVersion)
                            : u"Check for Updates…"_s;
}

QAction *makeSeparator(QObject *parent)
{
    auto *separator = new QAction(parent);
    separator->setSeparator(true);
    return separator;
}

} // namespace

Commands::Commands(QObject *parent, HostSystem system)
    : QObject(parent),
      m_openWindow(new QAction(u"Open Window"_s, this)),
      m_about(new QAction(u"About Corvane"_s, this)),
      m_checkForUpdates(new QAction(updatesText({}), this)),
      m_settings(new QAction(u"Settings…"_s, this)),
      m_quit(new QAction(u"Quit"_s, this)),
      m_historyWindows(new QActionGroup(this)),
      m_separators{makeSeparator(this), makeSeparator(this), makeSeparator(this)}
{
    assertMainThread();
    m_openWindow->setMenuRole(QAction::NoRole);
    m_about->setMenuRole(QAction::AboutRole);
    m_checkForUpdates->setMenuRole(QAction::ApplicationSpecificRole);
    m_settings->setMenuRole(QAction::PreferencesRole);
    m_quit->setMenuRole(QAction::QuitRole);

    m_settings->setShortcut(Qt::CTRL | Qt::Key_Comma);
    m_quit->setShortcut(Qt::CTRL | Qt::Key_Q);
    if (system == HostSystem::linuxDesktop)
        m_about->setShortcut(Qt::Key_F1);
    for (std::size_t i = 0; i < allHistoryWindows.size(); ++i) {
        const HistoryWindow window = allHistoryWindows[i];
        QAction *action = m_historyWindows->addAction(u"Charts of "_s + windowName(window));
        action->setMenuRole(QAction::NoRole);
        action->setCheckable(true);
        action->setShortcut(Qt::Key_1 + static_cast<int>(i));
        connect(action, &QAction::triggered, this,
                [this, window] { emit historyWindowChosen(window); });
    }
    setHistoryWindow(HistoryWindow::oneMin);
}

void Commands::setHistoryWindow(HistoryWindow window)
{
    const auto place = std::ranges::find(allHistoryWindows, window);
    if (place != allHistoryWindows.end())
        m_historyWindows->actions()[place - allHistoryWindows.begin()]->setChecked(true);
}

QList<QAction *> Commands::historyWindows() const
{
    return m_historyWindows->actions();
}

void Commands::connectUpdater(const UpdaterManager &updater)
{
    m_checkForUpdates->setEnabled(updater.canCheck());
    connect(&updater, &UpdaterManager::canCheckChanged, m_checkForUpdates, &QAction::setEnabled);
    const auto showAvailable = [this, &updater] {
        m_checkForUpdates->setText(updatesText(updater.availableVersion()));
    };
    connect(&updater, &UpdaterManager::availableVersionChanged, m_checkForUpdates, showAvailable);
    showAvailable();
}

QList<QAction *> Commands::inMenuOrder() const
{
    return QList<QAction *>{m_openWindow, m_separators[0]} + besidesOpenWindow();
}

QList<QAction *> Commands::ofDashboard() const
{
    return historyWindows() + QList<QAction *>{m_separators[2]} + besidesOpenWindow();
}

QList<QAction *> Commands::besidesOpenWindow() const
{
    return {m_about, m_checkForUpdates, m_settings, m_separators[1], m_quit};
}

} // namespace corvane
