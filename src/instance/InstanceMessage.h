#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// What a second start asks of the program that runs: to open its dashboard.
struct InstanceMessage {
    /// The desktop's leave for the window to come to the front; empty: none.
    std::string activationToken = {};

    friend bool operator==(const InstanceMessage &, const InstanceMessage &) = default;
};

/// Of its bytes; what is longer is no message.
inline constexpr std::size_t longestInstanceMessage = 2048;

/// What the program that runs answers.
inline constexpr std::string_view instanceAnswer = "Corvane/1 opened\n";

/// The message as bytes. A token that is not fit to travel stays behind.
std::string instanceMessageBytes(const InstanceMessage &message);

/// The message of which these are all bytes; nothing for any other bytes, or for a part of one.
std::optional<InstanceMessage> parseInstanceMessage(std::string_view bytes);

} // namespace corvane
