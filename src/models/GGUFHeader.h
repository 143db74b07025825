#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// What the beginning of a GGUF file says about its model. Texts are UTF-8 and at most
/// `longestText` bytes long; absent when the file does not say it.
struct GGUFHeader {
    static constexpr std::size_t longestText = 512;
    /// The pairs that are read stand before the tokenizer's arrays.
    static constexpr std::size_t bytesRead = 64 << 10;

    std::optional<std::string> name = {};      ///< `general.name`
    std::optional<std::string> sizeLabel = {}; ///< `general.size_label`, such as "8B".
    std::optional<std::uint32_t> fileType = {};
    std::optional<std::uint64_t> contextLength = {}; ///< Tokens that the model was trained for.

    friend bool operator==(const GGUFHeader &, const GGUFHeader &) = default;
};

/// Reads the first bytes of a file: "GGUF", u32 version (2 or 3), u64 tensors, u64 pairs, then the
/// pairs, little-endian. Pairs beyond the bytes given are not known. Absent for any other file.
/// Pure.
std::optional<GGUFHeader> parseGGUFHeader(std::string_view bytes);

/// The name in the header with the size label, if that is not in it: "Qwen3 Instruct 8B".
std::optional<std::string> nameOf(const GGUFHeader &header);

} // namespace corvane
