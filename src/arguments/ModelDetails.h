#pragma once

#include <QStringList>

#include <cstdint>
#include <optional>

namespace corvane {

/// Where the name of a model was found.
enum class ModelOrigin : std::uint8_t {
    arguments,   ///< In the command line.
    server,      ///< In the command line of the server that the process is a part of.
    ollamaStore, ///< In Ollama's store, by the digest of the file.
    fileHeader,  ///< In the file itself.
    usedFile,    ///< It is the name of a file that the process has mapped or open.
};

/// What is known of a workload's model beside its name.
struct ModelDetails {
    ModelOrigin origin = ModelOrigin::arguments;
    std::optional<QString> path =
        {}; ///< The argument that names the model, where it may be a path.
    std::optional<QString> quantisation = {};        ///< "Q4_K_M"
    std::optional<std::uint64_t> contextLength = {}; ///< Tokens that the process was started for.
    std::optional<std::uint64_t> trainedLength = {}; ///< Tokens that the model was trained for.
    QStringList otherNames = {};                     ///< Under which the same weights are stored.
    /// Weights in files that the process has mapped: not part of its footprint. Absent where the
    /// system does not tell.
    std::optional<std::uint64_t> mappedBytes = {};
    /// Seconds for which the loaded model is known to have left the GPU unused. Absent where that
    /// is not known, and while it uses the GPU.
    std::optional<std::int64_t> idleSeconds = {};

    friend bool operator==(const ModelDetails &, const ModelDetails &) = default;
};

} // namespace corvane
