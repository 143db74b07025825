#pragma once

#include <cstdint>
#include <string>

namespace corvane::fuzz {

/// The bytes, in which 0xff begins a run: the byte behind it is repeated, and the two bytes behind
/// that one are the count. So a change of few bytes yields lengths that libFuzzer would hardly ever
/// reach: lines of 64 KiB, thousands of arguments.
inline std::string withRuns(const std::uint8_t *data, std::size_t size)
{
    constexpr std::size_t most = 140'000; // More takes its time and shows nothing new.
    std::string bytes;
    for (std::size_t at = 0; at < size && bytes.size() < most; ++at) {
        if (data[at] == 0xff && at + 3 < size) {
            bytes.append(std::size_t(data[at + 2]) << 8 | data[at + 3],
                         static_cast<char>(data[at + 1]));
            at += 3;
        } else {
            bytes += static_cast<char>(data[at]);
        }
    }
    return bytes;
}

} // namespace corvane::fuzz
