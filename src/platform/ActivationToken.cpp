#include "platform/ActivationToken.h"

#include <algorithm>

namespace corvane {

bool isActivationToken(std::string_view text)
{
    constexpr auto isPrintable = [](char character) {
        return character >= ' ' && character <= '~';
    };
    return !text.empty() && text.size() <= longestActivationToken
        && std::ranges::all_of(text, isPrintable);
}

} // namespace corvane
