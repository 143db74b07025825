#pragma once

#include "platform/Plausible.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>

namespace corvane {

// Pure functions over the text of kernel files. Results are views into the text, so that a tick
// allocates nothing. A number that does not parse is absent.

/// Cuts the first line off `text` and returns it without its line feed; absent when `text` is
/// empty.
std::optional<std::string_view> takeLine(std::string_view &text);

/// Cuts the first word off `text` (blanks and tabs separate); absent when there is none.
std::optional<std::string_view> takeWord(std::string_view &text);

/// Cuts `text` behind its next word and returns that word's number; absent, and nothing is cut,
/// where the next word is no decimal number or there is none.
std::optional<std::uint64_t> takeUnsigned(std::string_view &text);

/// Without blanks, tabs, line ends and NULs on both sides.
std::string_view trimmed(std::string_view text);

/// The two sides of a line such as "MemTotal:   24684096 kB", both trimmed.
struct KeyValue {
    std::string_view key = {};
    std::string_view value = {};
};

/// Cuts `text` behind the first line that has a colon and splits that line at its first colon;
/// absent when no line has one.
std::optional<KeyValue> takeKeyValue(std::string_view &text);

/// The whole of `text` as a decimal count.
std::optional<std::uint64_t> parseUnsigned(std::string_view text);

/// The whole of `text` as a signed decimal number.
std::optional<std::int64_t> parseSigned(std::string_view text);

/// The whole of `text` as a decimal number of at most 15 digits with an optional point, rounded
/// once.
std::optional<double> parseDecimal(std::string_view text);

/// `count` units of `unit` bytes; absent above `largestByteCount`.
std::optional<std::uint64_t> byteCount(std::uint64_t count, std::uint64_t unit);

/// The count of a text such as "  24684096 kB", in KiB; absent above `largestByteCount`.
std::optional<std::uint64_t> parseKibibytes(std::string_view text);

/// Degrees Celsius of a sensor's millidegrees; absent when it is off or implausible.
std::optional<double> parseMillidegrees(std::string_view text);

/// Whether `text` is well-formed UTF-8: no stray, overlong or missing bytes, no surrogates.
bool isUtf8(std::string_view text);

/// Calls `visit(number)` for each CPU of a list such as "0-3,8,10-11"; a part that does not parse
/// ends the iteration. So do numbers out of order, so that none comes twice, and numbers of
/// `maxCPUs` and above.
template <typename Visitor>
void forEachCPU(std::string_view list, Visitor visit)
{
    list = trimmed(list);
    std::uint64_t least = 0;
    while (!list.empty()) {
        const std::string_view part = list.substr(0, list.find(','));
        list.remove_prefix(part.size() == list.size() ? part.size() : part.size() + 1);
        const std::size_t dash = part.find('-');
        const auto first = parseUnsigned(part.substr(0, dash));
        const auto last =
            dash == std::string_view::npos ? first : parseUnsigned(part.substr(dash + 1));
        if (!first || !last || *first < least || *last >= maxCPUs)
            return;
        for (std::uint64_t cpu = *first; cpu <= *last; ++cpu)
            visit(static_cast<int>(cpu));
        least = std::max(least, *last + 1);
    }
}

} // namespace corvane
