#include "platform/KernelText.h"

#include <cstddef>

using namespace corvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    std::string_view text(reinterpret_cast<const char *>(data), size);
    int last = -1;
    forEachCPU(text, [&last](int cpu) {
        if (cpu <= last || cpu >= int(maxCPUs))
            __builtin_trap();
        last = cpu;
    });
    if (const auto celsius = parseMillidegrees(text); celsius && !(*celsius > 0 && *celsius < 150))
        __builtin_trap();
    for (std::string_view rest = text; const auto line = takeKeyValue(rest);) {
        if (line->key != trimmed(line->key) || line->value != trimmed(line->value)
            || line->key.find(':') != std::string_view::npos)
            __builtin_trap();
        parseKibibytes(line->value);
    }
    while (auto line = takeLine(text)) {
        while (const auto word = takeWord(*line)) {
            if (word->empty())
                __builtin_trap();
            parseUnsigned(*word);
            parseSigned(*word);
            parseDecimal(trimmed(*word));
        }
    }
    return 0;
}
