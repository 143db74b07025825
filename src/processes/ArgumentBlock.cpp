#include "processes/ArgumentBlock.h"

#include "platform/KernelText.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace corvane {

namespace {

/// Cuts the text up to the next NUL off `bytes`, and that NUL.
std::string_view takeString(std::string_view &bytes)
{
    const std::string_view text = bytes.substr(0, bytes.find('\0'));
    bytes.remove_prefix(std::min(bytes.size(), text.size() + 1));
    return text;
}

void skipNULs(std::string_view &bytes)
{
    bytes.remove_prefix(std::min(bytes.size(), bytes.find_first_not_of('\0')));
}

/// Up to `count` strings; fewer when the bytes end before.
std::vector<std::string> takeArguments(std::string_view bytes, int count)
{
    std::vector<std::string> arguments;
    for (int taken = 0; taken < count && !bytes.empty(); ++taken) {
        const std::string_view argument = takeString(bytes);
        if (isUtf8(argument))
            arguments.emplace_back(argument);
    }
    return arguments;
}

} // namespace

std::optional<ArgumentRecord> parseArgumentBlock(std::string_view block)
{
    std::int32_t count = 0;
    if (block.size() < sizeof(count))
        return std::nullopt;
    std::memcpy(&count, block.data(), sizeof(count));
    if (count < 0 || count > mostArguments)
        return std::nullopt;
    block.remove_prefix(sizeof(count));

    ArgumentRecord record;
    const std::string_view path = takeString(block);
    if (isUtf8(path))
        record.path = path;
    skipNULs(block);
    record.argv = takeArguments(block, count);
    return record;
}

std::optional<std::vector<std::string>> parseCommandLine(std::string_view commandLine)
{
    std::string_view rest = commandLine;
    takeString(rest);
    skipNULs(rest);
    if (rest.empty())
        return takeArguments(commandLine, 1);
    const auto ends = std::ranges::count(commandLine, '\0') + (commandLine.back() != '\0');
    if (ends > mostArguments)
        return std::nullopt;
    return takeArguments(commandLine, mostArguments);
}

} // namespace corvane
