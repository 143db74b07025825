#include "models/MappedFiles.h"
#include "platform/KernelText.h"

#include <cstddef>

using namespace corvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    for (const MappedFile &file : parseMaps({reinterpret_cast<const char *>(data), size})) {
        if (!isModelPath(file.path) || !isUtf8(file.path) || file.bytes == 0)
            __builtin_trap();
    }
    return 0;
}
