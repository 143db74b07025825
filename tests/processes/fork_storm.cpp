// Starts and reaps thousands of short processes, a few at a time, each with some memory of its own.

#include <array>
#include <cstddef>
#include <cstring>

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

[[noreturn]] void liveShortly()
{
    constexpr std::size_t size = 1 << 20;
    prctl(PR_SET_NAME, "storm-child");
    void *memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory != MAP_FAILED)
        std::memset(memory, 1, size);
    _exit(0);
}

} // namespace

int main()
{
    constexpr int batches = 500;
    std::array<pid_t, 8> children = {};
    for (int batch = 0; batch < batches; ++batch) {
        for (pid_t &child : children) {
            child = fork();
            if (child == 0)
                liveShortly();
        }
        for (const pid_t child : children) {
            if (child > 0)
                waitpid(child, nullptr, 0);
        }
    }
    return 0;
}
