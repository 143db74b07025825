#pragma once

#include <cstddef>

namespace corvane {

/// Overwrites text that may hold secrets before its memory is given back. For strings and spans of
/// any kind; a string that shares its characters leaves those of the others alone.
template <typename Text>
void wipe(Text &text)
{
    // The compiler may leave out writes to memory that is freed next, but none to volatile memory.
    auto *characters = text.data();
    volatile auto *bytes = reinterpret_cast<char *>(characters);
    const auto size = static_cast<std::size_t>(text.size()) * sizeof(*characters);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = 0;
}

} // namespace corvane
