#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// What a manifest in Ollama's store leads to. Digests are 64 hexadecimal digits.
struct OllamaManifest {
    std::vector<std::string> models = {};    ///< Of the layers that are a model's weights.
    std::vector<std::string> manifests = {}; ///< Of the manifests, if this is a list of them.

    friend bool operator==(const OllamaManifest &, const OllamaManifest &) = default;
};

/// Longer lists are cut: a model has one file of weights, rarely some.
inline constexpr std::size_t mostDigests = 64;

/// Reads the JSON of a manifest. Absent when it is not well-formed or nested as no manifest is.
/// Pure; needs no memory beyond the digests, however many layers there are.
std::optional<OllamaManifest> parseOllamaManifest(std::string_view json);

/// The digits of a digest such as "sha256:8eeb…", or of the file name "sha256-8eeb…"; absent for
/// any other text.
std::optional<std::string> digestDigits(std::string_view digest);

/// What users call the model of a manifest below the four folders of its name: "qwen3:8b" for the
/// library of the registry, "me/qwen3:8b" for another namespace, with the host before that of
/// another registry.
std::string ollamaName(std::string_view host, std::string_view space, std::string_view model,
                       std::string_view tag);

} // namespace corvane
