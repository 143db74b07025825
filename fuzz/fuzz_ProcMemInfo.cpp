#include "memory/MemorySampler.h"
#include "memory/ProcMemInfo.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

using namespace corvane;

/// The four texts stand behind one another, parted by NULs: memory, pressure, ZFS, compressed disk.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    std::string_view rest(reinterpret_cast<const char *>(data), size);
    std::array<std::optional<std::string_view>, 4> texts;
    for (auto &text : texts) {
        text = rest.substr(0, rest.find('\0'));
        if (text->size() == rest.size())
            break; // The others could not be read.
        rest.remove_prefix(text->size() + 1);
    }
    const MemoryCounters counters =
        memoryCounters({.memInfo = texts[0],
                        .pressure = texts[1],
                        .arcStats = texts[2],
                        .zramBytes = zramMemory(texts[3].value_or(std::string_view()))});
    const MemorySnapshot memory = MemorySampler::snapshot(counters); // Ends at an overflow.
    if (memory.used > memory.total || memory.swapUsed > memory.swapTotal)
        __builtin_trap();
    if (counters.pages && !counters.totalBytes)
        __builtin_trap();
    return 0;
}
