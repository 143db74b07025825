#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <string>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace corvane {

/// One small file of every process.
inline std::vector<std::string> statmPaths()
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

/// The least that a pass over all processes must do.
inline void readBare(const std::vector<std::string> &paths)
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

} // namespace corvane
