#include "history/JsonText.h"

#include "platform/KernelText.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <charconv>
#include <string>

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

void skipBlanks(std::string_view &text)
{
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
}

/// Cuts a part of this length and the blanks behind it off `text`.
std::string_view take(std::string_view &text, std::size_t length)
{
    const std::string_view part = text.substr(0, length);
    text.remove_prefix(part.size());
    skipBlanks(text);
    return part.substr(0, part.find_last_not_of(blanks) + 1);
}

/// Whether a string, quotes and escapes included, reads as `key`.
bool spells(std::string_view string, std::string_view key)
{
    if (string.find('\\') == std::string_view::npos)
        return string.size() == key.size() + 2 && string.substr(1, key.size()) == key;
    const std::string list = '[' + std::string(string) + ']';
    const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(list));
    return document.array().first().toString().toUtf8() == QByteArrayView(key.data(), key.size());
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

std::optional<std::string_view> memberText(std::string_view object, std::string_view key)
{
    std::optional<std::string_view> found;
    object.remove_prefix(std::min(object.find('{'), object.size()));
    while (object.starts_with('{') || object.starts_with(',')) {
        take(object, 1);
        if (!object.starts_with('"'))
            break;
        const std::string_view name = take(object, stringLength(object));
        if (!object.starts_with(':'))
            break;
        take(object, 1);
        const std::string_view value = take(object, valueLength(object));
        if (spells(name, key))
            found = value;
    }
    return found;
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
