#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace corvane {

/// How the weights of a file with that `general.file_type` are stored: "Q4_K_M". Absent for a
/// number that is not known.
std::optional<QString> quantisationOfFileType(std::uint32_t fileType);

/// How the weights of a model are stored, where its name tells: "Q4_K_M" in
/// "qwen3-8b-q4_K_M.gguf", "4-bit" in "Llama-3-8B-4bit".
std::optional<QString> quantisationInName(const QString &name);

} // namespace corvane
