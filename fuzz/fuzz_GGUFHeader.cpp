#include "models/GGUFHeader.h"
#include "platform/KernelText.h"

using namespace corvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto header = parseGGUFHeader({reinterpret_cast<const char *>(data), size});
    if (!header)
        return 0;
    for (const auto &text : {header->name, header->sizeLabel}) {
        if (text && (text->empty() || text->size() > GGUFHeader::longestText || !isUtf8(*text)))
            __builtin_trap();
    }
    if (nameOf(*header).has_value() != header->name.has_value())
        __builtin_trap();
    return 0;
}
