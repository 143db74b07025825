// A survey of all processes with detection and the names of models, against the system calls that
// it makes once names are known; and what a new process costs, against the bare reads of its own
// files. Real children fill the process table and pose as runners.

#include "BareReads.h"
#include "Crowd.h"
#include "Ratio.h"
#include "models/ModelNames.h"
#include "processes/Surveyor.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>

#include <sys/mman.h>

namespace {

using namespace corvane;

constexpr std::size_t mebibyte = 1 << 20;

/// A folder with a GGUF file and a store of 64 models.
class Files {
public:
    Files()
    {
        char name[] = "/tmp/corvane-bench-XXXXXX";
        m_root = mkdtemp(name);
        std::filesystem::create_directories(m_root + "/blobs");
        for (int model = 0; model < models; ++model) {
            const std::string folder =
                m_root + "/manifests/registry.ollama.ai/library/model" + std::to_string(model);
            std::filesystem::create_directories(folder);
            std::ofstream(folder + "/8b")
                << R"({"layers":[{"mediaType":"application/vnd.ollama.image.model","digest":"sha256:)"
                << digest(model) << R"("}]})";
        }
        std::ofstream(blob(), std::ios::binary)
            << std::string("GGUF\3\0\0\0", 8) << std::string(mebibyte, '\0');
        std::filesystem::copy_file(blob(), file());
    }
    ~Files() { std::filesystem::remove_all(m_root); }
    Files(const Files &) = delete;
    Files &operator=(const Files &) = delete;

    std::string file() const { return m_root + "/llama.gguf"; }
    std::string blob() const { return m_root + "/blobs/sha256-" + digest(models - 1); }
    std::vector<std::string> manifests() const
    {
        std::vector<std::string> paths;
        for (const auto &entry :
             std::filesystem::recursive_directory_iterator(m_root + "/manifests"))
            if (entry.is_regular_file())
                paths.push_back(entry.path());
        return paths;
    }

private:
    static constexpr int models = 64;
    static std::string digest(int model)
    {
        char text[65] = {};
        std::snprintf(text, sizeof text, "%064x", model);
        return text;
    }

    std::string m_root;
};

/// A child by that name with 208 MiB of memory of its own and a mapped model file.
class Runner {
public:
    explicit Runner(const std::string &file)
    {
        int ready[2] = {};
        if (pipe(ready) != 0)
            std::abort();
        m_pid = fork();
        if (m_pid == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            prctl(PR_SET_NAME, "llama-server");
            constexpr std::size_t size = 208 * mebibyte;
            void *memory =
                mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
            std::memset(memory, 1, size);
            const int model = open(file.c_str(), O_RDONLY);
            mmap(nullptr, mebibyte, PROT_READ, MAP_SHARED, model, 0);
            if (write(ready[1], "", 1) == 1)
                pause();
            _exit(0);
        }
        char byte = 0;
        if (read(ready[0], &byte, 1) != 1)
            std::abort();
        close(ready[0]);
        close(ready[1]);
    }
    ~Runner()
    {
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }
    Runner(const Runner &) = delete;
    Runner &operator=(const Runner &) = delete;

    pid_t pid() const { return m_pid; }

private:
    pid_t m_pid = 0;
};

void readWhole(const std::string &path)
{
    static char text[64 << 10];
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    while (read(file, text, sizeof text) == sizeof text && path.starts_with("/proc")) { }
    close(file);
}

void listProcesses()
{
    DIR *proc = opendir("/proc");
    while (const dirent *entry = readdir(proc))
        benchmark::DoNotOptimize(entry->d_name);
    closedir(proc);
}

std::string processFile(std::int64_t pid, const char *name)
{
    return "/proc/" + std::to_string(pid) + '/' + name;
}

/// The number of the process that started it; 0 where there is none.
std::int64_t parentOf(std::int64_t pid)
{
    std::string text;
    std::getline(std::ifstream(processFile(pid, "stat")), text);
    const std::size_t name = text.rfind(')');
    return name == std::string::npos ? 0 : std::atoll(text.c_str() + name + 4);
}

/// What a survey asks the kernel when it knows all processes: the list of them, how much memory
/// there is, one kept file of each, the names of those that it shows and the ancestors of the
/// workloads.
class BareSurvey {
public:
    explicit BareSurvey(const Survey &survey) : m_memory(statmPaths()), m_names(namesOf(survey))
    {
        for (const AIWorkload &workload : survey.workloads) {
            for (std::int64_t pid = workload.pid; pid > 1; pid = parentOf(pid))
                m_ancestors.insert(processFile(pid, "stat"));
        }
    }

    void operator()()
    {
        listProcesses();
        readWhole("/proc/meminfo");
        m_memory();
        m_names();
        for (const std::string &path : m_ancestors)
            readWhole(path);
    }

private:
    static std::vector<std::string> namesOf(const Survey &survey)
    {
        std::set<std::string> paths;
        for (const ProcessRow &row : survey.processes)
            paths.insert(processFile(row.id, "comm"));
        for (const AIWorkload &workload : survey.workloads)
            paths.insert(processFile(workload.pid, "comm"));
        return {paths.begin(), paths.end()};
    }

    BareReads m_memory;
    BareReads m_names;
    std::set<std::string> m_ancestors = {};
};

void namedSurvey(benchmark::State &state)
{
    const Files files;
    const Runner first(files.file());
    const Runner second(files.file());
    const Crowd crowd(static_cast<std::size_t>(state.range(0)));
    Surveyor surveyor;
    ModelNames names;
    const auto take = [&] {
        Survey survey = surveyor.take();
        names.name(survey.workloads);
        return survey;
    };
    const Survey survey = take();
    const auto isNamed = [](const AIWorkload &workload) { return workload.model.has_value(); };
    state.counters["processes"] = static_cast<double>(statmPaths().size());
    state.counters["named"] = static_cast<double>(std::ranges::count_if(survey.workloads, isNamed));
    BareSurvey bare(survey);
    compare(
        state, [&] { benchmark::DoNotOptimize(take()); }, [&bare] { bare(); }, processSeconds);
}
BENCHMARK(namedSurvey)
    ->Arg(200)
    ->Arg(1000)
    ->Arg(3000)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

/// The first look at a process that has a model file mapped.
void newRunner(benchmark::State &state)
{
    const Files files;
    const Runner runner(files.file());
    const std::string maps = "/proc/" + std::to_string(runner.pid()) + "/maps";
    const auto look = [&runner] {
        std::vector<AIWorkload> workloads{{.pid = runner.pid()}};
        ModelNames().name(workloads);
        return workloads;
    };
    compare(
        state, [&] { benchmark::DoNotOptimize(look()); },
        [&] {
            readWhole(maps);
            readWhole(files.file());
        },
        processSeconds);
}
BENCHMARK(newRunner)->UseManualTime()->Unit(benchmark::kMicrosecond);

/// The first look at a runner of a store with 64 models.
void newOllamaRunner(benchmark::State &state)
{
    const Files files;
    const Runner runner(files.file());
    const std::string maps = "/proc/" + std::to_string(runner.pid()) + "/maps";
    const auto manifests = files.manifests();
    const auto look = [&] {
        std::vector<AIWorkload> workloads{{.pid = runner.pid()}};
        workloads.front().details.path = QString::fromStdString(files.blob());
        ModelNames().name(workloads);
        return workloads;
    };
    if (look().front().model != QStringLiteral("model63:8b"))
        state.SkipWithError("no name");
    compare(
        state, [&] { benchmark::DoNotOptimize(look()); },
        [&] {
            readWhole(maps);
            readWhole(files.blob());
            for (const std::string &manifest : manifests)
                readWhole(manifest);
        },
        processSeconds);
}
BENCHMARK(newOllamaRunner)->UseManualTime()->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
