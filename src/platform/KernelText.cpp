#include "platform/KernelText.h"

#include <algorithm>
#include <array>
#include <charconv>

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

/// Whether the byte separates words. These are a few bytes long: searching one for a set of
/// characters would cost a call for each.
bool isBlank(char byte)
{
    return byte == ' ' || byte == '\t';
}

/// Bytes of the UTF-8 sequence that `first` opens; 0 when it opens none.
std::size_t sequenceLength(unsigned char first)
{
    if (first < 0x80)
        return 1;
    if (first < 0xC2) // A continuation byte, or an overlong form of ASCII.
        return 0;
    if (first < 0xE0)
        return 2;
    if (first < 0xF0)
        return 3;
    return first < 0xF5 ? 4 : 0;
}

/// Whether the bytes of one sequence stand for a character (the table of well-formed sequences in
/// the Unicode standard: the second byte alone identifies overlong forms, surrogates and numbers
/// above U+10FFFF).
bool isSequence(std::string_view bytes)
{
    for (const char byte : bytes.substr(1)) {
        if ((static_cast<unsigned char>(byte) & 0xC0) != 0x80)
            return false;
    }
    const auto first = static_cast<unsigned char>(bytes.front());
    const auto second = static_cast<unsigned char>(bytes.size() > 1 ? bytes[1] : 0);
    switch (first) {
    case 0xE0:
        return second >= 0xA0;
    case 0xED:
        return second < 0xA0;
    case 0xF0:
        return second >= 0x90;
    case 0xF4:
        return second < 0x90;
    default:
        return true;
    }
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
    const auto start = std::ranges::find_if_not(text, isBlank);
    if (start == text.end())
        return std::nullopt;
    const auto end = std::find_if(start, text.end(), isBlank);
    const std::string_view word(start, end);
    text = std::string_view(end, text.end());
    return word;
}

std::optional<std::uint64_t> takeUnsigned(std::string_view &text)
{
    const char *const last = text.data() + text.size();
    const char *const first = std::find_if_not(text.data(), last, isBlank);
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(first, last, number);
    if (error != std::errc() || (end != last && !isBlank(*end)))
        return std::nullopt;
    text = std::string_view(end, last);
    return number;
}

std::string_view trimmed(std::string_view text)
{
    const auto isAround = [](char byte) {
        return isBlank(byte) || byte == '\n' || byte == '\r' || byte == '\0';
    };
    while (!text.empty() && isAround(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isAround(text.back()))
        text.remove_suffix(1);
    return text;
}

std::optional<KeyValue> takeKeyValue(std::string_view &text)
{
    while (const auto line = takeLine(text)) {
        const std::size_t colon = line->find(':');
        if (colon != std::string_view::npos)
            return KeyValue{trimmed(line->substr(0, colon)), trimmed(line->substr(colon + 1))};
    }
    return std::nullopt;
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
    // By hand, since not every standard library reads floating-point numbers from a view. Up to 15
    // digits are exact in a double, and so is the power of ten: the quotient is the nearest value.
    constexpr std::size_t mostDigits = 15;
    constexpr std::array powers{1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    std::uint64_t value = 0;
    std::size_t digits = 0;
    std::optional<std::size_t> whole; // Digits before the point.
    for (const char byte : text) {
        if (byte == '.' && !whole) {
            whole = digits;
            continue;
        }
        if (byte < '0' || byte > '9' || ++digits > mostDigits)
            return std::nullopt;
        value = value * 10 + static_cast<std::uint64_t>(byte - '0');
    }
    if (digits == 0)
        return std::nullopt;
    return static_cast<double>(value) / powers[digits - whole.value_or(digits)];
}

std::optional<std::uint64_t> byteCount(std::uint64_t count, std::uint64_t unit)
{
    if (unit != 0 && count > largestByteCount / unit)
        return std::nullopt;
    return count * unit;
}

std::optional<std::uint64_t> parseKibibytes(std::string_view text)
{
    constexpr std::uint64_t kibibyte = 1024;
    const auto word = takeWord(text);
    const auto count = word ? parseUnsigned(*word) : std::nullopt;
    if (!count || trimmed(text) != "kB" || !byteCount(*count, kibibyte))
        return std::nullopt;
    return count;
}

std::optional<double> parseMillidegrees(std::string_view text)
{
    const auto millidegrees = parseSigned(trimmed(text));
    if (!millidegrees || !isTemperature(double(*millidegrees) / 1000, celsiusLimitLinux))
        return std::nullopt;
    // What a diode of 8 bits shows when nothing is connected to it.
    constexpr std::int64_t unconnected = 127'000;
    return *millidegrees == unconnected ? std::nullopt
                                        : std::optional(double(*millidegrees) / 1000);
}

bool isUtf8(std::string_view text)
{
    while (!text.empty()) {
        const std::size_t length = sequenceLength(static_cast<unsigned char>(text.front()));
        if (length == 0 || length > text.size() || !isSequence(text.substr(0, length)))
            return false;
        text.remove_prefix(length);
    }
    return true;
}

} // namespace corvane
