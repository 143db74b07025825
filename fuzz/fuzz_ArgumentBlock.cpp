#include "Runs.h"

#include "platform/KernelText.h"
#include "processes/ArgumentBlock.h"

#include <algorithm>
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
    const std::string bytes = fuzz::withRuns(data, size);
    if (const auto record = parseArgumentBlock(bytes)) {
        if (!isUtf8(record->path))
            __builtin_trap();
        check(record->argv, bytes.size());
    }
    if (const auto arguments = parseCommandLine(bytes)) {
        check(*arguments, bytes.size());
        if (arguments->size() > 1 && std::ranges::count(bytes, '\0') > mostArguments)
            __builtin_trap(); // Too many, and some of them left out.
    }
    return 0;
}
