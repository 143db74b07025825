#include "drivers/APUMetrics.h"

#include "platform/Plausible.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace corvane {

namespace {

constexpr std::size_t npuColumns = 8;

/// Sizes in bytes by format. Formats 1 are those of cards; 2.0 is misaligned.
struct Format {
    std::uint8_t format;
    std::uint8_t content;
    std::size_t size;
};
constexpr auto formats =
    std::to_array<Format>({{2, 1, 120}, {2, 2, 128}, {2, 3, 152}, {2, 4, 168}, {3, 0, 264}});

/// A number of little-endian bytes; absent where all its bits are set, which means "unknown".
template <typename Number>
std::optional<double> numberAt(std::string_view bytes, std::size_t offset)
{
    Number number = 0;
    for (std::size_t place = sizeof(Number); place-- > 0;)
        number =
            static_cast<Number>(number << 8 | static_cast<unsigned char>(bytes[offset + place]));
    if (number == std::numeric_limits<Number>::max())
        return std::nullopt;
    return double(number);
}

template <typename Number>
std::optional<double> wattsAt(std::string_view bytes, std::size_t offset)
{
    const auto milliwatts = numberAt<Number>(bytes, offset);
    if (!milliwatts || *milliwatts > maxWatts * 1000)
        return std::nullopt;
    return *milliwatts / 1000;
}

std::optional<double> npuFraction(std::string_view bytes, std::size_t offset)
{
    double sum = 0;
    int columns = 0;
    for (std::size_t column = 0; column < npuColumns; ++column) {
        const auto percent = numberAt<std::uint16_t>(bytes, offset + 2 * column);
        if (!percent)
            continue;
        if (*percent > 100)
            return std::nullopt;
        sum += *percent;
        ++columns;
    }
    return columns > 0 ? std::optional(sum / columns / 100) : std::nullopt;
}

/// 0 is the clock of an NPU that rests.
std::optional<double> clockAt(std::string_view bytes, std::size_t offset)
{
    const auto megahertz = numberAt<std::uint16_t>(bytes, offset);
    return megahertz && *megahertz > 0 && *megahertz <= highestMHz ? megahertz : std::nullopt;
}

} // namespace

std::optional<APUMetrics> parseAPUMetrics(std::string_view bytes)
{
    if (bytes.size() < 4)
        return std::nullopt;
    const auto byteAt = [bytes](std::size_t place) {
        return static_cast<std::uint8_t>(bytes[place]);
    };
    const bool isKnown = std::ranges::any_of(formats, [&](const Format &format) {
        return byteAt(2) == format.format && byteAt(3) == format.content
            && numberAt<std::uint16_t>(bytes, 0) == double(format.size)
            && bytes.size() == format.size;
    });
    if (!isKnown)
        return std::nullopt;
    if (byteAt(2) == 2)
        return APUMetrics{.packageWatts = wattsAt<std::uint16_t>(bytes, 40),
                          .coreWatts = wattsAt<std::uint16_t>(bytes, 42),
                          .graphicsWatts = wattsAt<std::uint16_t>(bytes, 46)};
    return APUMetrics{.packageWatts = wattsAt<std::uint32_t>(bytes, 112),
                      .coreWatts = wattsAt<std::uint32_t>(bytes, 132),
                      .graphicsWatts = wattsAt<std::uint32_t>(bytes, 124),
                      .npuFraction = npuFraction(bytes, 46),
                      .npuWatts = wattsAt<std::uint16_t>(bytes, 116),
                      .npuMHz = clockAt(bytes, 180)};
}

} // namespace corvane
