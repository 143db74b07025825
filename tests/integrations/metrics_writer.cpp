// metrics_writer FOLDER…: writes the metrics file of one machine into each folder, with a card and
// a workload whose figures differ, until its standard input closes.

#include "figures/KnownMachines.h"
#include "figures/MetricsFile.h"
#include "sampler/SystemSampler.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <chrono>
#include <memory>
#include <vector>

#include <unistd.h>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

/// A machine whose figures depend on its number.
struct Machine {
    Machine(const QString &folder, unsigned number)
        : sampler(settings,
                  {.memory =
                       [number] {
                           MemorySnapshot memory = cardMachine().memory;
                           memory.used = (number + 1) * 1'000'000'000ULL;
                           return memory;
                       },
                   .chip = [] { return cardMachine().chip; },
                   .survey = {.take =
                                  [number](const RankingReport &) {
                                      return Survey{
                                          .workloads = {{.id = 1,
                                                         .framework = AIFramework::llamaCpp,
                                                         .model = u"a \"model\" %1"_s.arg(number),
                                                         .memory = 5,
                                                         .gpuMemory = 7}}};
                                  }}},
                  keepsNoHistory),
          file(sampler, {})
    {
        // A second of the machine each 50 ms.
        sampler.findChild<QTimer *>()->setInterval(std::chrono::milliseconds(50));
        file.setFolder(folder);
    }

    AppSettings settings;
    SystemSampler sampler;
    MetricsFile file;
};

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    std::vector<std::unique_ptr<Machine>> machines;
    for (int place = 1; place < argc; ++place)
        machines.push_back(std::make_unique<Machine>(QString::fromLocal8Bit(argv[place]),
                                                     static_cast<unsigned>(place)));
    const QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &application, &QCoreApplication::quit);
    return QCoreApplication::exec();
}
