#pragma once

#include <cstdint>
#include <string>

namespace corvane::test {

/// Builds the bytes of a GGUF file, pair by pair.
class GGUFText {
public:
    explicit GGUFText(std::uint32_t version = 3) : m_version(version) { }

    GGUFText &text(const std::string &key, const std::string &value)
    {
        return pair(key, 8, number(value.size(), 8) + value);
    }
    GGUFText &u32(const std::string &key, std::uint32_t value)
    {
        return pair(key, 4, number(value, 4));
    }
    GGUFText &u64(const std::string &key, std::uint64_t value)
    {
        return pair(key, 10, number(value, 8));
    }

    /// A value of any type, as bytes.
    GGUFText &pair(const std::string &key, std::uint32_t type, const std::string &value)
    {
        m_pairs += number(key.size(), 8) + key + number(type, 4) + value;
        ++m_count;
        return *this;
    }

    std::string bytes() const { return bytes(m_count); }

    /// With a count of pairs that may be wrong.
    std::string bytes(std::uint64_t pairs) const
    {
        return "GGUF" + number(m_version, 4) + number(291, 8) + number(pairs, 8) + m_pairs;
    }

    /// Little-endian.
    static std::string number(std::uint64_t value, int size)
    {
        std::string bytes;
        for (int i = 0; i < size; ++i)
            bytes += static_cast<char>(value >> (8 * i) & 0xff);
        return bytes;
    }

private:
    std::uint32_t m_version;
    std::uint64_t m_count = 0;
    std::string m_pairs;
};

} // namespace corvane::test
