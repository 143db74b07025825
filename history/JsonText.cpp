#include "history/JsonText.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <charconv>
#include <string>

namespace corvane {

namespace {

constexpr std::string_view blanks = " \t\r\n";
constexpr std::string_view digits = "0123456789";

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

/// Cuts the digits off `text` that it begins with.
std::string_view takeDigits(std::string_view &text)
{
    const std::string_view taken = text.substr(0, text.find_first_not_of(digits));
    text.remove_prefix(taken.size());
    return taken;
}

bool takeSign(std::string_view &text, char sign)
{
    const bool taken = text.starts_with(sign);
    text.remove_prefix(taken ? 1 : 0);
    return taken;
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

std::optional<std::uint64_t> exactUnsigned(std::string_view number)
{
    const bool negative = takeSign(number, '-');
    const std::string_view whole = takeDigits(number);
    std::string_view fraction;
    if (takeSign(number, '.')) {
        fraction = takeDigits(number);
        if (fraction.empty())
            return std::nullopt;
    }
    std::int64_t exponent = 0;
    if (takeSign(number, 'e') || takeSign(number, 'E')) {
        const bool shrinks = takeSign(number, '-');
        if (!shrinks)
            takeSign(number, '+');
        const std::string_view size = takeDigits(number);
        if (size.empty())
            return std::nullopt;
        // Far beyond the digits of any line, and far from an overflow of what is added below.
        constexpr std::int64_t huge = std::int64_t(1) << 40;
        const auto [end, error] = std::from_chars(size.data(), size.data() + size.size(), exponent);
        exponent = error == std::errc() ? std::min(exponent, huge) : huge;
        exponent = shrinks ? -exponent : exponent;
    }
    if (whole.empty() || !number.empty())
        return std::nullopt;

    // The number is significant × 10^exponent, without zeros on either side.
    std::string significant = std::string(whole) + std::string(fraction);
    exponent -= static_cast<std::int64_t>(fraction.size());
    significant.erase(0, significant.find_first_not_of('0'));
    const std::size_t length = significant.find_last_not_of('0') + 1;
    exponent += static_cast<std::int64_t>(significant.size() - length);
    significant.resize(length);
    if (significant.empty())
        return 0;

    constexpr std::int64_t mostDigits = 20;
    if (negative || exponent < 0
        || static_cast<std::int64_t>(significant.size()) + exponent > mostDigits)
        return std::nullopt;
    significant.append(static_cast<std::size_t>(exponent), '0');
    std::uint64_t value = 0;
    const char *last = significant.data() + significant.size();
    if (std::from_chars(significant.data(), last, value).ec != std::errc())
        return std::nullopt;
    return value;
}

} // namespace corvane
