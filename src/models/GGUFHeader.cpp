#include "models/GGUFHeader.h"

#include "platform/KernelText.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace corvane {

namespace {

constexpr std::uint64_t mostTokens = std::uint64_t(1) << 40; ///< Anything above is garbage.

/// The types of values, in the file's numbering. Those with a fixed size have it in `sizes`.
enum class Type : std::uint32_t { u32 = 4, text = 8, array = 9, u64 = 10 };
constexpr std::array<std::uint8_t, 13> sizes{1, 1, 2, 2, 4, 4, 4, 1, 0, 0, 8, 8, 8};

/// Takes values off bytes. Once something is missing nothing more can be taken.
class Reader {
public:
    explicit Reader(std::string_view bytes) : m_bytes(bytes) { }

    template <typename Number>
    std::optional<Number> number()
    {
        const auto raw = take(sizeof(Number));
        if (!raw)
            return std::nullopt;
        Number value = 0;
        for (std::size_t i = 0; i < sizeof(Number); ++i)
            value |= static_cast<Number>(static_cast<unsigned char>((*raw)[i])) << (8 * i);
        return value;
    }

    std::optional<std::string_view> text()
    {
        const auto length = number<std::uint64_t>();
        return length ? take(*length) : std::nullopt;
    }

    /// Passes a value over; false when it does not end within the bytes.
    bool skip(std::uint32_t type, int depth = 0)
    {
        constexpr int deepest = 4;
        if (type == static_cast<std::uint32_t>(Type::text))
            return text().has_value();
        if (type == static_cast<std::uint32_t>(Type::array))
            return depth < deepest && skipArray(depth + 1);
        return type < sizes.size() && take(sizes[type]).has_value();
    }

private:
    bool skipArray(int depth)
    {
        const auto type = number<std::uint32_t>();
        const auto count = number<std::uint64_t>();
        if (!type || !count)
            return false;
        const std::size_t size = *type < sizes.size() ? sizes[*type] : 0;
        if (size > 0)
            return *count <= m_bytes.size() / size && take(*count * size).has_value();
        for (std::uint64_t i = 0; i < *count; ++i) {
            if (!skip(*type, depth))
                return false;
        }
        return true;
    }

    std::optional<std::string_view> take(std::uint64_t length)
    {
        if (length > m_bytes.size()) {
            m_bytes = {};
            return std::nullopt;
        }
        const std::string_view taken = m_bytes.substr(0, static_cast<std::size_t>(length));
        m_bytes.remove_prefix(taken.size());
        return taken;
    }

    std::string_view m_bytes;
};

std::optional<std::string> keptText(std::string_view text)
{
    text = trimmed(text);
    if (text.empty() || text.size() > GGUFHeader::longestText || !isUtf8(text))
        return std::nullopt;
    return std::string(text);
}

std::optional<std::uint64_t> wholeNumber(Reader &reader, std::uint32_t type)
{
    if (type == static_cast<std::uint32_t>(Type::u64))
        return reader.number<std::uint64_t>();
    const auto number = reader.number<std::uint32_t>();
    return number ? std::optional<std::uint64_t>(*number) : std::nullopt;
}

/// Takes a pair's value; false when the pairs behind it cannot be read.
bool readValue(Reader &reader, std::string_view key, std::uint32_t type, GGUFHeader &header)
{
    if (type == static_cast<std::uint32_t>(Type::text)) {
        const auto text = reader.text();
        if (text && key == "general.name")
            header.name = keptText(*text);
        else if (text && key == "general.size_label")
            header.sizeLabel = keptText(*text);
        return text.has_value();
    }
    const bool isWhole = type == static_cast<std::uint32_t>(Type::u32)
        || type == static_cast<std::uint32_t>(Type::u64);
    if (!isWhole)
        return reader.skip(type);
    const auto number = wholeNumber(reader, type);
    if (number && key == "general.file_type" && *number <= UINT32_MAX)
        header.fileType = static_cast<std::uint32_t>(*number);
    if (number && key.ends_with(".context_length") && *number > 0 && *number <= mostTokens)
        header.contextLength = *number;
    return number.has_value();
}

bool holdsIgnoringCase(std::string_view text, std::string_view part)
{
    const auto same = [](char left, char right) {
        return std::tolower(static_cast<unsigned char>(left))
            == std::tolower(static_cast<unsigned char>(right));
    };
    return std::search(text.begin(), text.end(), part.begin(), part.end(), same) != text.end();
}

} // namespace

std::optional<GGUFHeader> parseGGUFHeader(std::string_view bytes)
{
    constexpr std::string_view magic = "GGUF";
    if (!bytes.starts_with(magic))
        return std::nullopt;
    Reader reader(bytes.substr(magic.size()));
    const auto version = reader.number<std::uint32_t>();
    const auto tensors = reader.number<std::uint64_t>();
    const auto pairs = reader.number<std::uint64_t>();
    if (!tensors || !pairs || (*version != 2 && *version != 3))
        return std::nullopt;

    GGUFHeader header;
    for (std::uint64_t i = 0; i < *pairs; ++i) {
        const auto key = reader.text();
        const auto type = reader.number<std::uint32_t>();
        if (!key || !type || !readValue(reader, *key, *type, header))
            break;
    }
    return header;
}

std::optional<std::string> nameOf(const GGUFHeader &header)
{
    if (!header.name || !header.sizeLabel || holdsIgnoringCase(*header.name, *header.sizeLabel))
        return header.name;
    return *header.name + ' ' + *header.sizeLabel;
}

} // namespace corvane
