#include "app/CorvaneApp.h"

#include "app/AboutPanel.h"
#include "app/CommandLine.h"
#include "app/DesktopSession.h"
#include "app/DisplayGuard.h"
#include "app/MenuBar.h"
#include "app/PaintingThread.h"
#include "app/ProcessStart.h"
#include "app/QuitSignals.h"
#include "controls/NoticeBar.h"
#include "dashboard/MainWindow.h"
#include "instance/ApplicationService.h"
#include "instance/InstanceSocket.h"
#include "instance/SingleInstance.h"
#include "platform/FileDescriptor.h"
#include "platform/Heap.h"
#include "settings/SettingsWindow.h"
#include "threads/MainThread.h"
#include "threads/ThreadStart.h"
#include "windows/WindowPlatform.h"
#include "windows/WindowTools.h"

#include <QAction>
#include <QApplication>
#include <QMenuBar>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// Sets the names under which preferences are stored and the desktop knows the windows.
void nameProgram()
{
    QCoreApplication::setOrganizationName(u"Corvane"_s);
    QCoreApplication::setOrganizationDomain(u"corvane.github.io"_s);
    QCoreApplication::setApplicationName(u"Corvane"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(CORVANE_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral(CORVANE_IDENTIFIER));
}

QStringList words(int argc, char **argv)
{
    QStringList words;
    for (int place = 0; place < argc; ++place)
        words.append(QString::fromLocal8Bit(argv[place]));
    return words;
}

void printLine(std::FILE *file, const QString &text)
{
    std::fputs((text + u'\n').toLocal8Bit().constData(), file);
}

/// By what went wrong with standard output, if anything did. A reader may leave.
int statusOfOutput(std::error_code error)
{
    if (!error || error == std::errc::broken_pipe)
        return EXIT_SUCCESS;
    printLine(stderr,
              u"Corvane: Standard output cannot be written: %1."_s.arg(
                  QString::fromLocal8Bit(error.message())));
    return EXIT_FAILURE;
}

/// Prints samples until standard output closes or all is printed.
int printFigures(FiguresForm form)
{
    AppSettings settings;
    SystemSampler sampler(settings, {}, keepsNoHistory);
    const FiguresOutput output(sampler, form, ChipInfo::current().name, STDOUT_FILENO);
    QObject::connect(&output, &FiguresOutput::finished, QCoreApplication::instance(),
                     &QCoreApplication::quit, Qt::QueuedConnection);
    QCoreApplication::exec();
    return statusOfOutput(output.error());
}

/// The exit status of a start that shows no window; absent for one that does.
std::optional<int> statusWithoutWindows(const CommandLine &line, bool hasOutput, int &argc,
                                        char **argv)
{
    if (!line.error.isEmpty()) {
        printLine(stderr, u"Corvane: "_s + line.error);
        return wrongCommandLine;
    }
    if (!line.asksForHelp && !line.asksForVersion && !line.figures)
        return std::nullopt;
    if (!hasOutput)
        return EXIT_FAILURE;
    const QCoreApplication application(argc, argv);
    if (line.figures)
        return printFigures(*line.figures);
    printLine(stdout,
              line.asksForHelp ? helpText().trimmed()
                               : u"Corvane "_s + QCoreApplication::applicationVersion());
    const bool isWritten = std::fflush(stdout) == 0;
    return statusOfOutput(isWritten ? std::error_code()
                                    : std::error_code(errno, std::generic_category()));
}

/// The exit status of a start that is not the first; absent for the first.
std::optional<int> statusOfLaterStart(const SingleInstance &instance)
{
    switch (instance.standing()) {
    case SingleInstance::Standing::first:
        return std::nullopt;
    case SingleInstance::Standing::second:
        return EXIT_SUCCESS;
    case SingleInstance::Standing::unanswered:
        break;
    }
    std::fputs("Corvane is already running, but it does not answer.\n", stderr);
    return EXIT_FAILURE;
}

/// Libraries hang without threads and abort without files, even where they end: the process exits
/// here.
[[noreturn]] void endWithout(const char *what)
{
    std::fprintf(stderr, "Corvane cannot start: the system allows it no more %s.\n", what);
    std::_Exit(EXIT_FAILURE);
}

/// Without a display the process exits here.
std::unique_ptr<QApplication> makeApplication(int &argc, char **argv)
{
    const DisplayGuard guard;
    return std::make_unique<QApplication>(argc, argv);
}

} // namespace

CorvaneApp::CorvaneApp(bool isBackground, QObject *parent) : QObject(parent)
{
    assertMainThread();
    connectCommands();
    connectLabel(isBackground);
    connectPanel();
    connectMetrics();
    connectHistoryWindow();
    connectFocus();
    if (hostSystem() == HostSystem::mac)
        m_menuBar = makeMenuBar(m_commands);
}

CorvaneApp::~CorvaneApp()
{
    delete m_settings;
    delete m_mainWindow;
}

void CorvaneApp::openMainWindow()
{
    if (!isOpen(m_mainWindow)) {
        if (!hasDescriptorsForAWindow())
            return;
        // A Mac's menu bar takes no click when the program becomes regular after its window is
        // shown.
        systemWindowPlatform().setActivationPolicy(ActivationPolicy::regular);
        // The survey runs while the window is built.
        m_processInterest = m_state.sampler.lookAtProcesses();
        m_mainWindow =
            new MainWindow(nullptr, ChipInfo::current(), coverageOf(m_state.sampler.current()));
        deleteOnClose(*m_mainWindow);
        connect(m_mainWindow, &QObject::destroyed, this, [this, opening = ++m_openings] {
            if (opening == m_openings) // The lifecycle does not know one that was closed at once.
                systemWindowPlatform().setActivationPolicy(ActivationPolicy::accessory);
        });
        connectMainWindow();
    }
    bringForward(*m_mainWindow);
}

void CorvaneApp::openSettings()
{
    if (!isOpen(m_settings)) {
        if (!hasDescriptorsForAWindow())
            return;
        m_settings =
            new SettingsWindow(m_state.launch, m_state.updater, m_state.settings, m_state.metrics);
        deleteOnClose(*m_settings);
        m_settings->addActions(m_commands.inMenuOrder()); // For their shortcuts.
    }
    bringForward(*m_settings);
}

/// On Linux the updater has no windows of its own, so the settings show what it finds.
void CorvaneApp::checkForUpdates()
{
    if (hostSystem() == HostSystem::linuxDesktop) {
        openSettings();
        if (m_settings)
            m_settings->showTab(SettingsTab::updates);
    }
    m_state.updater.checkForUpdates();
}

void CorvaneApp::connectCommands()
{
    connect(m_commands.openWindow(), &QAction::triggered, this, &CorvaneApp::openMainWindow);
    connect(m_commands.about(), &QAction::triggered, this, [] {
        if (hasDescriptorsForAWindow())
            showAboutPanel();
    });
    connect(m_commands.settings(), &QAction::triggered, this, &CorvaneApp::openSettings);
    connect(m_commands.checkForUpdates(), &QAction::triggered, this, &CorvaneApp::checkForUpdates);
    m_commands.connectUpdater(m_state.updater);
    connect(m_commands.quit(), &QAction::triggered, qApp, &QCoreApplication::quit);
}

/// When no window is left, the program that had the focus before gets it back.
void CorvaneApp::connectFocus()
{
    const WindowPlatform platform = systemWindowPlatform();
    connect(qApp, &QGuiApplication::lastWindowClosed, this, platform.giveFocusBack);
    connect(&m_panel, &MenuBarContent::closed, this, platform.giveFocusBack, Qt::QueuedConnection);
    // The about panel of a Mac and the updater's windows are none of Qt's. A window that is about
    // to close is still open.
    m_closings = platform.observeClose(nullptr, [this, giveBack = platform.giveFocusBack] {
        QMetaObject::invokeMethod(this, giveBack, Qt::QueuedConnection);
    });
}

void CorvaneApp::connectRequests(const InstanceSocket &socket, const ApplicationService &service)
{
    const auto openOnce = [this] {
        m_isAskedToOpen = false;
        openMainWindow();
    };
    // A crowd of requests opens the window once.
    const auto open = [this, openOnce](const QByteArray &activationToken) {
        useActivationToken(activationToken);
        if (!std::exchange(m_isAskedToOpen, true))
            QMetaObject::invokeMethod(this, openOnce, Qt::QueuedConnection);
    };
    connect(&socket, &InstanceSocket::openRequested, this, open);
    connect(&service, &ApplicationService::openRequested, this, open);
    connect(&service, &ApplicationService::quitRequested, qApp, &QCoreApplication::quit);
    connect(&service, &ApplicationService::anotherAnswered, qApp, &QCoreApplication::quit);
}

void CorvaneApp::connectLabel(bool isBackground)
{
    const auto show = [this] {
        m_label.show(m_state.sampler.current());
        followVisibility();
        if (m_trayAdvice && m_label.isAvailable()) // A tray turned up.
            m_trayAdvice->deleteLater();
    };
    connect(&m_state.sampler, &SystemSampler::currentChanged, &m_label, show);
    connect(&m_label, &TrayLabel::activated, &m_panel, [this](const QPoint &position) {
        m_panel.showEnergy(m_state.sampler.energy());
        if (m_panel.isVisible() || hasDescriptorsForAWindow())
            m_panel.toggleAt(position);
    });
    connect(&m_label, &TrayLabel::openWindowRequested, this, &CorvaneApp::openMainWindow);
    // A program that runs and shows nothing is a defect, unless it was started like that.
    if (!isBackground)
        connect(&m_label, &TrayLabel::trayIsMissing, this, &CorvaneApp::showTrayAdvice);
    show();
}

/// The history alone is not worth a vendor's library.
void CorvaneApp::followVisibility()
{
    m_state.sampler.setShown(m_label.isAvailable() || m_panel.isVisible() || m_processInterest
                             || m_state.settings.writesMetrics());
}

/// Opens the dashboard, which says what would bring the label.
void CorvaneApp::showTrayAdvice(const QString &advice)
{
    openMainWindow();
    if (!isOpen(m_mainWindow) || !m_state.settings.wantsTrayAdvice())
        return;
    m_trayAdvice = new NoticeBar(advice);
    connect(m_trayAdvice, &NoticeBar::dismissedForGood, this,
            [this] { m_state.settings.declineTrayAdvice(); });
    m_mainWindow->showNotice(m_trayAdvice);
}

void CorvaneApp::connectMetrics()
{
    const auto follow = [this] {
        const AppSettings &settings = m_state.settings;
        m_state.metrics.setFolder(settings.writesMetrics() ? settings.metricsFolder() : QString());
    };
    connect(&m_state.settings, &AppSettings::metricsChanged, this, follow);
    follow();
}

void CorvaneApp::connectPanel()
{
    const auto show = [this] {
        m_panel.show(m_state.sampler.current());
        if (m_panel.isVisible())
            m_panel.showEnergy(m_state.sampler.energy());
    };
    connect(&m_state.sampler, &SystemSampler::currentChanged, &m_panel, show);
    connect(&m_panel, &MenuBarContent::openWindowRequested, m_commands.openWindow(),
            &QAction::trigger);
    connect(&m_panel, &MenuBarContent::quitRequested, m_commands.quit(), &QAction::trigger);
    m_panel.addActions(m_commands.inMenuOrder());
    show();
}

void CorvaneApp::connectMainWindow()
{
    SystemSampler &sampler = m_state.sampler;
    MainWindow *window = m_mainWindow;
    window->addActions(m_commands.ofDashboard());
    window->setHistoryWindow(m_state.settings.historyWindow());
    connect(window, &MainWindow::historyWindowChosen, &m_state.settings,
            &AppSettings::setHistoryWindow);
    const auto showSamples = [&sampler, window] {
        if (window->isVisible())
            window->showEnergy(sampler.energy());
        window->show(sampler.current(), sampler.chartHistory());
    };
    const auto showProcesses = [&sampler, window] { window->showProcesses(sampler.processes()); };
    const auto showWorkloads = [&sampler, window] {
        window->showWorkloads(sampler.aiWorkloads(), sampler.gpuHolders());
    };
    connect(&sampler, &SystemSampler::historyChanged, window, showSamples);
    connect(&sampler, &SystemSampler::processesChanged, window, showProcesses);
    connect(&sampler, &SystemSampler::aiWorkloadsChanged, window, showWorkloads);
    connect(window, &MainWindow::noLongerSeen, this, [this] { m_processInterest.reset(); });
    connect(window, &MainWindow::contentsNeeded, window, [=, this, &sampler] {
        if (!m_processInterest)
            m_processInterest = sampler.lookAtProcesses();
        followVisibility();
        sampler.awaitSurvey();
        showWorkloads(); // First, since the samples' cards show what these hold of the GPUs.
        showSamples();
        showProcesses();
    });
}

void CorvaneApp::connectHistoryWindow()
{
    connect(&m_commands, &Commands::historyWindowChosen, &m_state.settings,
            &AppSettings::setHistoryWindow);
    const auto follow = [this](HistoryWindow window) {
        m_commands.setHistoryWindow(window);
        if (m_mainWindow)
            m_mainWindow->setHistoryWindow(window);
    };
    connect(&m_state.settings, &AppSettings::historyWindowChanged, this, follow);
    follow(m_state.settings.historyWindow());
}

int run(int argc, char **argv)
{
    const bool hasOutput = fcntl(STDOUT_FILENO, F_GETFD) >= 0;
    openStandardDescriptors();
    dropRelativeFolders();
    ignoreWriteSignals();
    const bool hasFiles = raiseDescriptorLimit();
    shareOneHeap();
    nameProgram();
    const CommandLine line = parsedCommandLine(words(argc, argv));
    if (const auto status = statusWithoutWindows(line, hasOutput, argc, argv))
        return *status;

    const InstanceMessage message = messageOfThisStart();
    const SingleInstance instance(line.isBackground ? std::nullopt : std::optional(message));
    if (const auto status = statusOfLaterStart(instance))
        return *status;

    if (!hasFiles)
        endWithout("open files");
    if (!hasStack())
        endWithout("memory for its stack");
    if (!prepareDesktopSession() || !canStartThread())
        endWithout("threads");
    const auto application = makeApplication(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    if (!startPaintingThread())
        endWithout("threads");
    const QuitSignals quitSignals;
    CorvaneApp corvane(line.isBackground);
    const InstanceSocket socket(instance.socketPath());
    const auto service = makeApplicationService(message.activationToken);
    corvane.connectRequests(socket, *service);
    return QApplication::exec();
}

} // namespace corvane
