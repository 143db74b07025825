#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// What a JSON reader that keeps numbers as doubles cannot tell: how a number is written. Pure.

struct JsonMember {
    std::string name;
    std::string_view value; ///< As it is written.
};

/// The members of an object known to be valid JSON, in its order. Text that is not valid gives
/// some of them, whose values are parts of it.
std::vector<JsonMember> members(std::string_view object);

/// The value of that name, of several the last one; empty when there is none.
std::string_view valueOf(const std::vector<JsonMember> &members, std::string_view name);

/// Whether the text is a number by JSON's grammar, which Qt's reader widens (".5", "1.").
bool isNumber(std::string_view text);

/// The exact value of a JSON number in any notation ("17179869184", "1.6e10"); nothing for text
/// that is no number, and for one that is negative, has a fraction or is above 64 bits. "-0" is 0.
std::optional<std::uint64_t> exactUnsigned(std::string_view text);

} // namespace corvane
