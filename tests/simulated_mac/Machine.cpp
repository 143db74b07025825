#include "simulated_mac/Machine.h"

#include <cstring>

namespace corvane::simulated {

std::vector<std::uint8_t> argumentBlock(const std::string &path,
                                        const std::vector<std::string> &arguments,
                                        std::optional<std::int32_t> count)
{
    const std::int32_t written = count.value_or(static_cast<std::int32_t>(arguments.size()));
    std::vector<std::uint8_t> block(sizeof written);
    std::memcpy(block.data(), &written, sizeof written);
    const auto append = [&block](const std::string &text) {
        block.insert(block.end(), text.c_str(), text.c_str() + text.size() + 1);
    };
    append(path);
    block.insert(block.end(), 7 - path.size() % 8, 0); // The kernel pads to the next word.
    for (const std::string &argument : arguments)
        append(argument);
    append("HOME=/Users/somebody");
    return block;
}

std::vector<std::uint8_t> voltageStates(
    const std::vector<std::pair<std::uint32_t, std::uint32_t>> &records)
{
    std::vector<std::uint8_t> bytes;
    const auto append = [&bytes](std::uint32_t word) {
        for (int shift = 0; shift < 32; shift += 8)
            bytes.push_back(static_cast<std::uint8_t>(word >> shift));
    };
    for (const auto &[frequency, millivolts] : records) {
        append(frequency);
        append(millivolts);
    }
    return bytes;
}

} // namespace corvane::simulated
