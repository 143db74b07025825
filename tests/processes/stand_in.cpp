// Stands in for a heavy program under whatever name and arguments it is started: holds HOLD_MIB of
// memory of its own, maps the file MAP_FILE, writes "ready" and stays until its standard input
// ends.

#include <cstddef>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

bool mapFile(const char *path)
{
    constexpr std::size_t size = 4096;
    const int file = open(path, O_RDONLY);
    void *memory = mmap(nullptr, size, PROT_READ, MAP_SHARED, file, 0);
    close(file);
    return memory != MAP_FAILED;
}

} // namespace

int main()
{
    const char *mapped = std::getenv("MAP_FILE");
    if (mapped && !mapFile(mapped))
        return 1;
    const char *wanted = std::getenv("HOLD_MIB");
    const std::size_t size = std::strtoul(wanted ? wanted : "1", nullptr, 10) << 20;
    void *memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        return 1;
    madvise(memory, size, MADV_HUGEPAGE); // Fewer faults: only a hint, and only about speed.
    std::memset(memory, 1, size);
    constexpr char ready[] = "ready\n";
    if (write(STDOUT_FILENO, ready, sizeof(ready) - 1) < 0)
        return 1;
    char ignored = 0;
    while (read(STDIN_FILENO, &ignored, 1) > 0) { }
    return 0;
}
