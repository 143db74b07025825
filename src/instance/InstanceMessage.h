#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// A second start's request to the running program to open its dashboard.
struct InstanceMessage {
    /// The desktop's permission for the window to come to the front; empty if there is none.
    std::string activationToken = {};

    friend bool operator==(const InstanceMessage &, const InstanceMessage &) = default;
};

/// Bytes of the longest message that is accepted.
inline constexpr std::size_t longestInstanceMessage = 2048;

/// The running program's answer.
inline constexpr std::string_view instanceAnswer = "Corvane/1 opened\n";

/// The message as bytes, without its token if that is not valid.
std::string instanceMessageBytes(const InstanceMessage &message);

/// The message that consists of exactly these bytes; absent for any others, and for part of one.
std::optional<InstanceMessage> parseInstanceMessage(std::string_view bytes);

} // namespace corvane
