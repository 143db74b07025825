#include "platform/KernelText.h"

#include <charconv>
#include <cmath>

namespace corvane {

namespace {

template <typename Number>
std::optional<Number> parseWhole(std::string_view text)
{
    Number number = {};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return number;
}

} // namespace

std::optional<std::string_view> takeLine(std::string_view &text)
{
    if (text.empty())
        return std::nullopt;
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(line.size() == text.size() ? line.size() : line.size() + 1);
    return line;
}

std::optional<std::string_view> takeWord(std::string_view &text)
{
    constexpr std::string_view blanks = " \t";
    const std::size_t start = text.find_first_not_of(blanks);
    if (start == std::string_view::npos)
        return std::nullopt;
    text.remove_prefix(start);
    const std::string_view word = text.substr(0, text.find_first_of(blanks));
    text.remove_prefix(word.size());
    return word;
}

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks(" \t\r\n\0", 5);
    const std::size_t start = text.find_first_not_of(blanks);
    if (start == std::string_view::npos)
        return {};
    return text.substr(start, text.find_last_not_of(blanks) - start + 1);
}

std::optional<std::uint64_t> parseUnsigned(std::string_view text)
{
    return parseWhole<std::uint64_t>(text);
}

std::optional<std::int64_t> parseSigned(std::string_view text)
{
    return parseWhole<std::int64_t>(text);
}

std::optional<double> parseDecimal(std::string_view text)
{
    const auto number = parseWhole<double>(text);
    if (!number || !std::isfinite(*number))
        return std::nullopt;
    return number;
}

std::optional<std::uint64_t> byteCount(std::uint64_t count, std::uint64_t unit)
{
    if (unit != 0 && count > largestByteCount / unit)
        return std::nullopt;
    return count * unit;
}

} // namespace corvane
