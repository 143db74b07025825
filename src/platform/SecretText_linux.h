#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace corvane {

/// The first part of a regular file that may hold secrets, read once. It is overwritten at the end
/// of this object's life.
class SecretText {
public:
    /// Reads at most that many bytes.
    SecretText(const std::string &path, std::size_t limit);
    ~SecretText();
    SecretText(const SecretText &) = delete;
    SecretText &operator=(const SecretText &) = delete;

    /// Empty if the file cannot be read.
    std::string_view text() const { return {m_bytes.get(), m_length}; }

private:
    std::unique_ptr<char[]> m_bytes;
    std::size_t m_length = 0;
};

} // namespace corvane
