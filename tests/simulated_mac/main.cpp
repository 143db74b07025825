// corvane-simulated-mac [m1|max|ultra|m5pro] [rounds|idle|work|asleep]: the whole program on a Mac
// that is not there.

#include "app/CorvaneApp.h"
#include "simulated_mac/LivelyLoad.h"
#include "simulated_mac/SimulatedMac.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <cstdio>
#include <memory>

using namespace corvane::simulated;

namespace {

LivelyLoad::Mode loadMode = LivelyLoad::Mode::rounds; ///< Set before the application starts.

/// Lets the machine live in real time while the application runs.
void live()
{
    constexpr int millisecondsBetweenSteps = 200;
    auto *timer = new QTimer(QCoreApplication::instance());
    QElapsedTimer sinceLastStep;
    sinceLastStep.start();
    QObject::connect(timer, &QTimer::timeout, timer,
                     [load = std::make_shared<LivelyLoad>(loadMode), sinceLastStep]() mutable {
                         load->step(static_cast<double>(sinceLastStep.restart()) / 1000);
                     });
    timer->start(millisecondsBetweenSteps);
}
Q_COREAPP_STARTUP_FUNCTION(live)

} // namespace

int main(int argc, char **argv)
{
    const auto machine = machineNamed(argc > 1 ? argv[1] : "max");
    const auto mode = LivelyLoad::modeNamed(argc > 2 ? argv[2] : "rounds");
    if (!machine || !mode) {
        std::fputs("Usage: corvane-simulated-mac [m1|max|ultra|m5pro] [rounds|idle|work|asleep]\n",
                   stderr);
        return 1;
    }
    loadMode = *mode;
    mac().boot(*machine);
    return corvane::run(1, argv); // The program itself takes no arguments.
}
