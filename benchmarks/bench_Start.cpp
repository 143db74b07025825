// CPU time of a start, from loading the program to its first painting, compared with a Qt program
// that paints one empty window of that size. Each start is a separate process. It uses a real
// display if there is one; on a virtual desktop: tests/desktop/virtual-desktop bench_Start

#include "Ratio.h"
#include "app/CorvaneApp.h"
#include "dashboard/MainWindow.h"

#include <QApplication>
#include <QPaintEvent>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdlib>
#include <cstring>
#include <optional>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

using namespace corvane;

namespace {

/// Ends the process once a window of the dashboard's size has been painted.
class EndAfterPainting : public QObject {
protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const auto *widget = qobject_cast<QWidget *>(watched);
        if (event->type() == QEvent::Paint && widget && widget->width() >= leastWidth)
            QTimer::singleShot(0, [] { _exit(0); }); // After the whole window is painted.
        return false;
    }

private:
    static constexpr int leastWidth = 900;
};

[[noreturn]] void start(int argc, char **argv, const std::string &what)
{
    constexpr int settled = 1200; // Milliseconds until the label is in the tray.
    QApplication application(argc, argv);
    EndAfterPainting end;
    application.installEventFilter(&end);
    QWidget window;
    std::optional<CorvaneApp> corvane;
    if (what == "window") {
        window.resize(1280, 900);
        window.show();
    } else {
        corvane.emplace();
        if (what == "dashboard")
            corvane->openMainWindow();
        else
            QTimer::singleShot(settled, [] { _exit(0); });
    }
    QApplication::exec();
    std::abort();
}

void startOf(const char *what)
{
    std::string program = "/proc/self/exe";
    std::string option = "--start";
    std::string part = what;
    char *const arguments[] = {program.data(), option.data(), part.data(), nullptr};
    pid_t child = 0;
    int status = 0;
    if (posix_spawn(&child, program.c_str(), nullptr, nullptr, arguments, environ) != 0
        || waitpid(child, &status, 0) != child || status != 0)
        std::abort();
}

void compareStart(benchmark::State &state, const char *what)
{
    compare(
        state, [what] { startOf(what); }, [] { startOf("window"); }, childrenSeconds);
}

BENCHMARK_CAPTURE(compareStart, labelOnly, "label")->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(compareStart, withDashboard, "dashboard")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    if (argc == 3 && std::strcmp(argv[1], "--start") == 0)
        start(argc, argv, argv[2]);
    const QTemporaryDir folder; // For the history and the preferences.
    for (const char *name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
        qputenv(name, folder.path().toLocal8Bit());
    if (!qEnvironmentVariableIsSet("DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
