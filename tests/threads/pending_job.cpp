// Ends while a job still runs; the status must be 7.

#include "threads/BackgroundJob.h"

#include <QCoreApplication>

#include <chrono>
#include <cstdlib>
#include <string_view>
#include <thread>

int main(int argc, char *argv[])
{
    using namespace std::chrono_literals;
    constexpr int expectedStatus = 7;
    const QCoreApplication application(argc, argv);
    QObject owner;
    corvane::runThenDeliver(
        &owner,
        [] {
            while (true)
                std::this_thread::sleep_for(1h);
            return 0;
        },
        [](int) { std::abort(); });
    for (int i = 0; i < 4; ++i) {
        corvane::runThenDeliver(
            &owner, [] { return QString(1000, u'x'); }, [](const QString &) { std::abort(); });
    }
    if (argc == 2 && std::string_view(argv[1]) == "exit")
        std::exit(expectedStatus);
    return expectedStatus;
}
