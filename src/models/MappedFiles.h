#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// A file of a model in the address space of a process.
struct MappedFile {
    std::string path = {};
    std::uint64_t bytes = 0; ///< In all its mappings.

    friend bool operator==(const MappedFile &, const MappedFile &) = default;
};

/// Whether a file holds the weights of a model, by its path: GGUF and safetensors files, and those
/// that the stores of Ollama and Hugging Face name by a digest.
bool isModelPath(std::string_view path);

/// Adds a mapping to the list; anything but a model's file is left out.
void addMapping(std::vector<MappedFile> &files, std::string_view path, std::uint64_t bytes);

/// The model files in Linux's /proc/PID/maps, in the order of their first mapping. Lines that do
/// not parse are left out. Pure.
std::vector<MappedFile> parseMaps(std::string_view maps);

} // namespace corvane
