#include "models/MappedFiles.h"

#include "platform/KernelText.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <optional>

namespace corvane {

namespace {

std::string lowered(std::string_view text)
{
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

std::optional<std::uint64_t> parseHex(std::string_view text)
{
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

/// The length of a range such as "7f00a000-7f00b000".
std::optional<std::uint64_t> rangeLength(std::string_view range)
{
    const std::size_t dash = range.find('-');
    if (dash == std::string_view::npos)
        return std::nullopt;
    const auto first = parseHex(range.substr(0, dash));
    const auto last = parseHex(range.substr(dash + 1));
    if (!first || !last || *last <= *first || *last - *first > largestByteCount)
        return std::nullopt;
    return *last - *first;
}

/// The path of a mapping without the kernel's mark for a file that was removed.
std::string_view withoutMark(std::string_view path)
{
    constexpr std::string_view mark = " (deleted)";
    return path.ends_with(mark) ? path.substr(0, path.size() - mark.size()) : path;
}

} // namespace

bool isModelPath(std::string_view path)
{
    const std::string_view name = path.substr(path.rfind('/') + 1);
    const std::string ending =
        lowered(name.substr(name.size() - std::min<std::size_t>(12, name.size())));
    if (ending.ends_with(".gguf") || ending.ends_with(".safetensors"))
        return true;
    return (path.find("/blobs/sha256-") != std::string_view::npos
            || (path.find("/models--") != std::string_view::npos
                && path.find("/blobs/") != std::string_view::npos))
        && name.size() >= 40;
}

void addMapping(std::vector<MappedFile> &files, std::string_view path, std::uint64_t bytes)
{
    if (!isModelPath(path) || !isUtf8(path))
        return;
    const auto found = std::ranges::find(files, path, &MappedFile::path);
    if (found == files.end())
        files.push_back({std::string(path), bytes});
    else if (found->bytes <= largestByteCount)
        found->bytes += bytes;
}

std::vector<MappedFile> parseMaps(std::string_view maps)
{
    constexpr int fieldsBeforePath = 5; // Range, permissions, offset, device, inode.
    std::vector<MappedFile> files;
    while (const auto line = takeLine(maps)) {
        std::string_view rest = *line;
        const auto range = takeWord(rest);
        for (int field = 1; field < fieldsBeforePath; ++field)
            takeWord(rest);
        const std::string_view path = withoutMark(trimmed(rest));
        const auto length = range ? rangeLength(*range) : std::nullopt;
        if (length && path.starts_with('/'))
            addMapping(files, path, *length);
    }
    return files;
}

} // namespace corvane
