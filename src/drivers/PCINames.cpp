#include "drivers/PCINames.h"

#include "platform/KernelText.h"

#include <algorithm>
#include <charconv>

namespace corvane {

namespace {

/// The number of four hexadecimal digits that a line of the list begins with.
std::optional<std::uint16_t> leadingNumber(std::string_view line)
{
    constexpr std::size_t digits = 4;
    std::uint16_t number = 0;
    if (line.size() < digits)
        return std::nullopt;
    const auto [end, error] = std::from_chars(line.data(), line.data() + digits, number, 16);
    if (error != std::errc() || end != line.data() + digits)
        return std::nullopt;
    return number;
}

std::string_view nameBehindNumber(std::string_view line)
{
    return trimmed(line.substr(4));
}

bool isPrintable(std::string_view text)
{
    return isUtf8(text) && std::ranges::none_of(text, [](char byte) {
               return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7f;
           });
}

/// Ends in "…" at the last word or alternative that fits.
std::string shortened(std::string name)
{
    constexpr std::size_t longest = 48;
    if (name.size() <= longest)
        return name;
    const std::size_t end = name.find_last_of(" /", longest - 1);
    std::size_t length = end == std::string::npos ? longest : end;
    while (length > 0 && (static_cast<unsigned char>(name[length]) & 0xC0) == 0x80)
        --length; // Not within a character.
    while (length > 0 && (name[length - 1] == ' ' || name[length - 1] == '/'))
        --length;
    return name.substr(0, length) + "…";
}

} // namespace

std::optional<std::string> pciDeviceName(std::string_view list, std::uint16_t vendor,
                                         std::uint16_t device)
{
    bool isInVendor = false;
    while (const auto line = takeLine(list)) {
        if (line->empty() || line->front() == '#')
            continue;
        if (line->front() != '\t') {
            if (isInVendor)
                return std::nullopt; // The next maker begins.
            isInVendor = leadingNumber(*line) == vendor;
        } else if (isInVendor && leadingNumber(line->substr(1)) == device) {
            const std::string_view name = nameBehindNumber(line->substr(1));
            return name.empty() ? std::nullopt : std::optional(std::string(name));
        }
    }
    return std::nullopt;
}

std::string gpuProductName(std::string_view maker, std::string_view listName)
{
    if (!isPrintable(listName))
        return {};
    const std::size_t open = listName.find('[');
    const std::size_t close = listName.rfind(']');
    if (open != std::string_view::npos && close != std::string_view::npos && open < close)
        listName = listName.substr(open + 1, close - open - 1);
    listName = trimmed(listName);
    if (listName.empty())
        return {};
    std::string name(listName);
    if (!name.starts_with(maker))
        name = std::string(maker) + ' ' + name;
    return shortened(std::move(name));
}

std::optional<std::uint16_t> parsePCINumber(std::string_view text)
{
    text = trimmed(text);
    if (!text.starts_with("0x"))
        return std::nullopt;
    text.remove_prefix(2);
    return text.size() == 4 ? leadingNumber(text) : std::nullopt;
}

} // namespace corvane
