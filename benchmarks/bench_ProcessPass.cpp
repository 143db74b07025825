// One pass over all processes with the detection of AI workloads, against the least that any such
// pass must do: open, read and close one small file a process. Real children fill the process
// table; both sides are measured in turn, in CPU time of this thread.

#include "processes/Survey.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

namespace {

using namespace corvane;

std::vector<std::string> statmPaths()
{
    std::vector<std::string> paths;
    DIR *proc = opendir("/proc");
    while (const dirent *entry = readdir(proc)) {
        const std::string name = entry->d_name;
        if (std::ranges::all_of(name, [](char c) { return c >= '0' && c <= '9'; }))
            paths.push_back("/proc/" + name + "/statm");
    }
    closedir(proc);
    return paths;
}

/// Sleeping children that fill the process table up to `wanted` processes.
class Crowd {
public:
    explicit Crowd(std::size_t wanted)
    {
        for (std::size_t present = statmPaths().size(); present < wanted; ++present) {
            const pid_t child = fork();
            if (child < 0)
                break;
            if (child == 0) {
                prctl(PR_SET_PDEATHSIG, SIGKILL);
                while (true)
                    pause();
            }
            m_children.push_back(child);
        }
    }

    ~Crowd()
    {
        for (const pid_t child : m_children)
            kill(child, SIGKILL);
        for (const pid_t child : m_children)
            waitpid(child, nullptr, 0);
    }

    Crowd(const Crowd &) = delete;
    Crowd &operator=(const Crowd &) = delete;

private:
    std::vector<pid_t> m_children;
};

void readBare(const std::vector<std::string> &paths)
{
    char text[256];
    for (const std::string &path : paths) {
        const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        if (file < 0)
            continue;
        benchmark::DoNotOptimize(read(file, text, sizeof(text)));
        close(file);
    }
}

double cpuSeconds()
{
    timespec now = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

template <typename Work>
double cost(Work work)
{
    const double start = cpuSeconds();
    work();
    return cpuSeconds() - start;
}

void processPass(benchmark::State &state)
{
    const Crowd crowd(static_cast<std::size_t>(state.range(0)));
    const auto paths = statmPaths();
    double bare = 0;
    double pass = 0;
    for (auto _ : state) {
        bare += cost([&paths] { readBare(paths); });
        const double seconds = cost([] { benchmark::DoNotOptimize(takeSurvey()); });
        state.SetIterationTime(seconds);
        pass += seconds;
    }
    state.counters["processes"] = static_cast<double>(paths.size());
    state.counters["bare_s"] = benchmark::Counter(bare, benchmark::Counter::kAvgIterations);
    state.counters["ratio_to_bare"] = pass / bare;
}

BENCHMARK(processPass)
    ->Arg(200)
    ->Arg(1000)
    ->Arg(3000)
    ->UseManualTime()
    ->MinTime(2)
    ->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
