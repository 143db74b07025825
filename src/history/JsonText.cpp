#include "history/JsonText.h"

#include "platform/KernelText.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <charconv>

namespace corvane {

namespace {

constexpr std::string_view blanks = " \t\r\n";

/// Length of the string that `text` begins with, both quotes included.
std::size_t stringLength(std::string_view text)
{
    for (std::size_t end = 1; end < text.size(); ++end) {
        if (text[end] == '\\')
            ++end;
        else if (text[end] == '"')
            return end + 1;
    }
    return text.size();
}

/// Length of the value that `text` begins with, up to the comma or bracket that ends it.
std::size_t valueLength(std::string_view text)
{
    int depth = 0;
    for (std::size_t end = 0; end < text.size(); ++end) {
        const char c = text[end];
        if (c == '"')
            end += stringLength(text.substr(end)) - 1;
        else if (c == '{' || c == '[')
            ++depth;
        else if (depth == 0 && (c == ',' || c == '}' || c == ']'))
            return end;
        else if (c == '}' || c == ']')
            --depth;
    }
    return text.size();
}

/// Cuts a part of this length and the blanks behind it off `text`.
std::string_view take(std::string_view &text, std::size_t length)
{
    const std::string_view part = text.substr(0, length);
    text.remove_prefix(part.size());
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return part.substr(0, part.find_last_not_of(blanks) + 1);
}

/// What a string, quotes and escapes included, reads as.
std::string unescaped(std::string_view string)
{
    if (string.find('\\') == std::string_view::npos)
        return std::string(string.substr(1, std::max<std::size_t>(string.size(), 2) - 2));
    const QByteArray list = QByteArray::fromStdString('[' + std::string(string) + ']');
    return QJsonDocument::fromJson(list).array().first().toString().toStdString();
}

/// Cuts the digits off `text` that it begins with; nothing when there are none.
std::optional<std::string_view> takeDigits(std::string_view &text)
{
    const std::string_view taken = text.substr(0, text.find_first_not_of("0123456789"));
    text.remove_prefix(taken.size());
    return taken.empty() ? std::nullopt : std::optional(taken);
}

bool takeCharacter(std::string_view &text, char character)
{
    const bool taken = text.starts_with(character);
    text.remove_prefix(taken ? 1 : 0);
    return taken;
}

/// A number as it is written: ±digits × 10^exponent, without zeros on either side of the digits.
struct Decimal {
    bool negative = false;
    std::string digits = {};
    std::int64_t exponent = 0;
};

/// What follows the "e".
std::optional<std::int64_t> takeExponent(std::string_view &text)
{
    const bool negative = takeCharacter(text, '-');
    if (!negative)
        takeCharacter(text, '+');
    const auto digits = takeDigits(text);
    if (!digits)
        return std::nullopt;
    // Beyond the digits of any text, and far from an overflow of what is added to it.
    constexpr std::int64_t huge = std::int64_t(1) << 40;
    std::int64_t size = huge;
    std::from_chars(digits->data(), digits->data() + digits->size(), size);
    size = std::min(size, huge);
    return negative ? -size : size;
}

std::optional<Decimal> parseNumber(std::string_view text)
{
    Decimal number{.negative = takeCharacter(text, '-')};
    const auto whole = takeDigits(text);
    if (!whole || (whole->size() > 1 && whole->front() == '0'))
        return std::nullopt;
    number.digits = *whole;
    if (takeCharacter(text, '.')) {
        const auto fraction = takeDigits(text);
        if (!fraction)
            return std::nullopt;
        number.digits += *fraction;
        number.exponent = -static_cast<std::int64_t>(fraction->size());
    }
    if (takeCharacter(text, 'e') || takeCharacter(text, 'E')) {
        const auto exponent = takeExponent(text);
        if (!exponent)
            return std::nullopt;
        number.exponent += *exponent;
    }
    if (!text.empty())
        return std::nullopt;

    number.digits.erase(0, number.digits.find_first_not_of('0'));
    const std::size_t length = number.digits.find_last_not_of('0') + 1;
    number.exponent += static_cast<std::int64_t>(number.digits.size() - length);
    number.digits.resize(length);
    return number;
}

} // namespace

std::vector<JsonMember> members(std::string_view object)
{
    std::vector<JsonMember> found;
    object.remove_prefix(std::min(object.find('{'), object.size()));
    while (object.starts_with('{') || object.starts_with(',')) {
        take(object, 1);
        if (!object.starts_with('"'))
            break;
        const std::string_view name = take(object, stringLength(object));
        if (!object.starts_with(':'))
            break;
        take(object, 1);
        found.push_back({unescaped(name), take(object, valueLength(object))});
    }
    return found;
}

std::string_view valueOf(const std::vector<JsonMember> &members, std::string_view name)
{
    const auto last =
        std::find_if(members.rbegin(), members.rend(),
                     [name](const JsonMember &member) { return member.name == name; });
    return last == members.rend() ? std::string_view() : last->value;
}

bool isNumber(std::string_view text)
{
    return parseNumber(text).has_value();
}

std::optional<std::uint64_t> exactUnsigned(std::string_view text)
{
    constexpr std::int64_t mostDigits = 20;
    auto number = parseNumber(text);
    if (!number)
        return std::nullopt;
    if (number->digits.empty())
        return 0;
    const auto digits = static_cast<std::int64_t>(number->digits.size());
    if (number->negative || number->exponent < 0 || digits + number->exponent > mostDigits)
        return std::nullopt;
    number->digits.append(static_cast<std::size_t>(number->exponent), '0');
    return parseUnsigned(number->digits);
}

} // namespace corvane
