#pragma once

#include <cstddef>
#include <string_view>

namespace corvane {

/// In bytes. Tokens made by desktops have fewer than a hundred.
inline constexpr std::size_t longestActivationToken = 1024;

/// Whether the text can be a desktop's activation token, which lets a window come to the front:
/// not empty, not too long, printable ASCII only.
bool isActivationToken(std::string_view text);

} // namespace corvane
