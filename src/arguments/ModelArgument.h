#pragma once

#include <QStringList>

#include <cstdint>
#include <optional>

namespace corvane {

/// The model that a command line asks for, as it stands there.
struct ModelArgument {
    QString text = {};         ///< A path, a repository, a URL or a name.
    QString file = {};         ///< The file of a repository; empty when it is not named.
    bool isRepository = false; ///< Named by a flag that takes a repository, not a path.

    friend bool operator==(const ModelArgument &, const ModelArgument &) = default;
};

/// The model of the first flag that names one, else of the first model file. Adapters, projectors
/// and drafts, which come on top of a model, do not count. Pure, as are those below.
std::optional<ModelArgument> modelArgument(const QStringList &argv);

/// The name under which a server offers its model.
std::optional<QString> aliasArgument(const QStringList &argv);

/// The argument behind a command such as "serve" or "run" that is neither an option nor the value
/// of one; absent when an unknown option stands before it.
std::optional<QString> argumentBehind(const QStringList &arguments, QLatin1StringView command);

/// Tokens of context that the command line asks for.
std::optional<std::uint64_t> contextArgument(const QStringList &argv);

/// Whether that is a file of weights, by its suffix.
bool isModelFileName(const QString &name);

/// The part of a path or model identifier that is worth showing.
QString shortModelName(const QString &path);

/// What a person calls the model of such an argument, without looking at any file: "org/name" of a
/// path in the cache of Hugging Face, "blob 8eeb52dfb3bb" for a file that is named by its digest,
/// else the file's own name. Empty for an empty text.
QString modelNameOf(const QString &text);
QString modelNameOf(const ModelArgument &argument);

/// Where a path leads into the cache of Hugging Face: its repository, and the file as its stem if
/// it is a GGUF file. Absent for any other path.
struct CachedRepository {
    QString repository = {}; ///< "org/name".
    QString file = {};       ///< Without suffix and without the number of its part; may be empty.
};
std::optional<CachedRepository> cachedRepository(const QString &path);

/// A model in Ollama's store, by the path of its file.
struct OllamaBlob {
    QString store = {};  ///< The folder that holds `blobs/` and `manifests/`.
    QString digest = {}; ///< 64 hexadecimal digits.
};
std::optional<OllamaBlob> ollamaBlob(const QString &path);

/// Whether a file's name tells nothing about its model: "model.gguf", or a digest.
bool saysNothing(const QString &fileName);

} // namespace corvane
