#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace corvane {

/// What a JSON reader that keeps numbers as doubles cannot tell: how a number is written. Pure.

/// The text of the value that belongs to `key` in an object known to be valid JSON; of several the
/// last one. Nothing when there is none. Text that is not valid gives some part of it or nothing.
std::optional<std::string_view> memberText(std::string_view object, std::string_view key);

/// Whether the text is a number by JSON's grammar, which Qt's reader widens (".5", "1.").
bool isNumber(std::string_view text);

/// The exact value of a JSON number in any notation ("17179869184", "1.6e10"); nothing for text
/// that is no number, and for one that is negative, has a fraction or is above 64 bits. "-0" is 0.
std::optional<std::uint64_t> exactUnsigned(std::string_view text);

} // namespace corvane
