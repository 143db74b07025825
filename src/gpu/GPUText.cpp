#include "gpu/GPUText.h"

#include "platform/KernelText.h"
#include "platform/Plausible.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace corvane {

namespace {

std::optional<double> plausibleMHz(std::optional<std::uint64_t> megahertz)
{
    if (!megahertz || *megahertz == 0 || double(*megahertz) > highestMHz)
        return std::nullopt;
    return double(*megahertz);
}

/// The clock in "1130Mhz *"; absent unless it is marked.
std::optional<double> markedMHz(std::string_view level)
{
    std::string_view clock = takeWord(level).value_or(std::string_view());
    if (trimmed(level) != "*" || !clock.ends_with("hz"))
        return std::nullopt;
    clock.remove_suffix(clock.size() - clock.find_first_not_of("0123456789"));
    return plausibleMHz(parseUnsigned(clock));
}

} // namespace

bool isPCIAddress(std::string_view name)
{
    return std::ranges::count(name, ':') == 2 && std::ranges::count(name, '.') == 1
        && name.find_first_not_of("0123456789abcdef:.") == std::string_view::npos;
}

std::string kernelPCIAddress(std::string_view text)
{
    constexpr std::size_t leastDomainDigits = 4;
    std::string address(text);
    std::ranges::transform(address, address.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'F' ? char(letter - 'A' + 'a') : letter;
    });
    if (!isPCIAddress(address))
        return std::string(text);
    const std::size_t digits = address.find(':');
    const std::size_t zeros = std::min(address.find_first_not_of('0'), digits);
    if (digits > leastDomainDigits)
        address.erase(0, std::min(zeros, digits - leastDomainDigits));
    return address;
}

std::optional<double> parseBusyPercent(std::string_view text)
{
    const auto percent = parseUnsigned(trimmed(text));
    if (!percent || *percent > 100)
        return std::nullopt;
    return double(*percent) / 100;
}

std::optional<std::uint64_t> parseIdleTime(std::string_view text)
{
    const auto milliseconds = parseUnsigned(trimmed(text));
    return milliseconds == std::uint64_t(0) ? std::nullopt : milliseconds;
}

std::optional<double> presentLevelMHz(std::string_view levels)
{
    while (const auto level = takeKeyValue(levels)) {
        if (const auto megahertz = markedMHz(level->value))
            return megahertz;
    }
    return std::nullopt;
}

std::optional<double> parseClockMHz(std::string_view text)
{
    return plausibleMHz(parseUnsigned(trimmed(text)));
}

std::string clockStateName(std::optional<double> megahertz)
{
    if (!megahertz || *megahertz <= 0)
        return {};
    const long long hundreds = std::llround(*megahertz / 100);
    return std::to_string(std::max(hundreds, 1LL) * 100) + " MHz"; // Asleep it runs at a few MHz.
}

std::string performanceStateName(std::optional<int> state)
{
    constexpr int lowest = 15;
    if (!state || *state < 0 || *state > lowest)
        return {};
    return "P" + std::to_string(*state);
}

std::optional<std::uint64_t> parseMemoryBytes(std::string_view text)
{
    text = trimmed(text);
    if (!text.starts_with("0x")) {
        const auto bytes = parseUnsigned(text);
        return bytes ? byteCount(*bytes, 1) : std::nullopt;
    }
    text.remove_prefix(2);
    std::uint64_t bytes = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), bytes, 16);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return byteCount(bytes, 1);
}

std::optional<double> parseMicrowatts(std::string_view text)
{
    const auto microwatts = parseUnsigned(trimmed(text));
    if (!microwatts || double(*microwatts) > maxWatts * 1e6)
        return std::nullopt;
    return double(*microwatts) / 1e6;
}

} // namespace corvane
