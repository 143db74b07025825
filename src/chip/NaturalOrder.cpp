#include "chip/NaturalOrder.h"

#include <algorithm>
#include <compare>

namespace corvane {

namespace {

constexpr bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

constexpr unsigned char lowerCase(char c)
{
    return static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
}

/// Cuts the digits off the front and returns them without leading zeros.
std::string_view takeNumber(std::string_view &text)
{
    const auto end = std::find_if_not(text.begin(), text.end(), isDigit);
    std::string_view digits = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    text.remove_prefix(digits.size());
    digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
    return digits;
}

/// By value, whatever the length: no number is too large.
std::strong_ordering compareNumbers(std::string_view left, std::string_view right)
{
    if (left.size() != right.size())
        return left.size() <=> right.size();
    return left.compare(right) <=> 0;
}

} // namespace

bool naturallyLess(std::string_view left, std::string_view right)
{
    while (!left.empty() && !right.empty()) {
        std::strong_ordering order = std::strong_ordering::equal;
        if (isDigit(left.front()) && isDigit(right.front())) {
            order = compareNumbers(takeNumber(left), takeNumber(right));
        } else {
            order = lowerCase(left.front()) <=> lowerCase(right.front());
            left.remove_prefix(1);
            right.remove_prefix(1);
        }
        if (std::is_neq(order))
            return std::is_lt(order);
    }
    return left.empty() && !right.empty();
}

} // namespace corvane
