#include "platform/KernelText.h"
#include "processes/ArgumentBlock.h"

#include <cstddef>
#include <cstdint>

using namespace corvane;

namespace {

/// What holds for arguments from any bytes.
void check(const std::vector<std::string> &arguments, std::size_t size)
{
    if (arguments.size() > mostArguments)
        __builtin_trap();
    std::size_t length = 0;
    for (const std::string &argument : arguments) {
        if (!isUtf8(argument) || argument.find('\0') != std::string::npos)
            __builtin_trap();
        length += argument.size();
    }
    if (length > size)
        __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char *>(data), size);
    if (const auto record = parseArgumentBlock(bytes)) {
        if (!isUtf8(record->path))
            __builtin_trap();
        check(record->argv, size);
    }
    if (const auto arguments = parseCommandLine(bytes))
        check(*arguments, size);
    return 0;
}
