#pragma once

#include "models/ModelFiles.h"
#include "models/OllamaStores.h"
#include "processes/AIWorkload.h"
#include "processes/ProcessSource.h"

namespace corvane {

/// What files say of the model of one workload.
struct ModelFinding {
    std::optional<QString> model = {}; ///< Absent when nothing names it.
    ModelDetails details = {};
    bool isComplete = true; ///< False when time ran out; another look goes on from there.

    friend bool operator==(const ModelFinding &, const ModelFinding &) = default;
};

/// Turns what the rules found into the name that a person knows: by Ollama's store, the folders of
/// Hugging Face's cache, the header of a GGUF file, or the files that the process uses. Reads
/// files, and so may never return; bounded in files, bytes and depth. Safe from any thread. What
/// cannot be read leaves the finding as the rules made it.
class ModelResolver {
public:
    /// Reads the working folder of a process.
    using FolderOf = decltype(ProcessSource::folder);

    explicit ModelResolver(ModelFiles files = ModelFiles::system(),
                           FolderOf folderOf = ProcessSource::system().folder);

    ModelFinding resolve(const AIWorkload &workload, const IsOutOfTime &isOutOfTime = {});

private:
    void nameByPath(ModelFinding &finding, std::int32_t pid, const QString &path,
                    const IsOutOfTime &isOutOfTime);
    void nameByStore(ModelFinding &finding, const QString &path, const IsOutOfTime &isOutOfTime);
    static void readHeader(ModelFinding &finding, const std::string &path, bool isTold);
    std::optional<QString> absolute(std::int32_t pid, const QString &path) const;
    std::optional<QString> usedFile(std::int32_t pid, const std::vector<MappedFile> &mapped) const;

    const ModelFiles m_files;
    const FolderOf m_folderOf;
    OllamaStores m_stores;
};

} // namespace corvane
