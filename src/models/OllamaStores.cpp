#include "models/OllamaStores.h"

#include <algorithm>

namespace corvane {

namespace {

/// A folder with more entries than this is no store of a person's models.
constexpr std::size_t mostEntries = 1024;

/// The manifests of a store by the four levels of their names; those of the newer folder hold.
std::map<std::string, std::string> listManifests(const std::string &store,
                                                 const IsOutOfTime &isOutOfTime)
{
    constexpr int levels = 4;
    std::map<std::string, std::string> pathByName;
    for (const char *folder : {"/manifests-v2", "/manifests"}) {
        std::vector<std::string> paths{""};
        for (int level = 0; level < levels; ++level) {
            std::vector<std::string> below;
            for (const std::string &path : paths) {
                if (below.size() >= mostEntries || (isOutOfTime && isOutOfTime()))
                    break;
                for (const std::string &name : folderNames(store + folder + path, mostEntries))
                    below.push_back(path + '/' + name);
            }
            paths = std::move(below);
        }
        for (const std::string &path : paths) {
            if (pathByName.size() < OllamaStores::mostManifests)
                pathByName.try_emplace(path, store + folder + path);
        }
    }
    return pathByName;
}

/// The name of the model with a manifest at "/host/namespace/model/tag".
std::string nameAt(std::string_view levels)
{
    std::vector<std::string_view> pieces;
    while (!levels.empty()) {
        levels.remove_prefix(1);
        pieces.push_back(levels.substr(0, levels.find('/')));
        levels.remove_prefix(pieces.back().size());
    }
    return ollamaName(pieces[0], pieces[1], pieces[2], pieces[3]);
}

std::string blobPath(const std::string &store, const std::string &digest)
{
    return store + "/blobs/sha256-" + digest;
}

/// The file that a manifest's link leads to, if that is one of the store's blobs.
std::string pathBehindLink(const std::string &link, const std::string &store)
{
    const std::string target = linkTarget(link).value_or(std::string());
    const auto digest = digestDigits(std::string_view(target).substr(target.rfind('/') + 1));
    return digest ? blobPath(store, *digest) : std::string();
}

bool isShorter(const std::string &left, const std::string &right)
{
    return left.size() != right.size() ? left.size() < right.size() : left < right;
}

} // namespace

OllamaStores::Answer OllamaStores::namesOf(const std::string &store, const std::string &digest,
                                           const IsOutOfTime &isOutOfTime)
{
    const auto manifests = listManifests(store, isOutOfTime);
    Answer answer{.isComplete = !isOutOfTime || !isOutOfTime()};
    for (const auto &[levels, path] : manifests) {
        answer.isComplete = answer.isComplete && (!isOutOfTime || !isOutOfTime());
        if (!answer.isComplete)
            break;
        if (leadsTo(manifestAt(path, store), store, digest))
            answer.names.push_back(nameAt(levels));
    }
    std::ranges::sort(answer.names, isShorter);
    return answer;
}

OllamaManifest OllamaStores::manifestAt(const std::string &path, const std::string &store)
{
    if (const BoundedFile file(path, BoundedFile::Links::refuse); file)
        return read(file, path);
    const std::string target = pathBehindLink(path, store);
    const BoundedFile file(target, BoundedFile::Links::refuse);
    return file ? read(file, target) : OllamaManifest();
}

OllamaManifest OllamaStores::read(const BoundedFile &file, const std::string &path)
{
    if (file.size() > longestManifest)
        return {};
    {
        const MutexLock lock(m_mutex);
        const auto found = m_byPath.find(path);
        if (found != m_byPath.end() && found->second.version == file.version())
            return found->second.manifest;
    }
    OllamaManifest manifest =
        parseOllamaManifest(file.head(longestManifest)).value_or(OllamaManifest());
    const MutexLock lock(m_mutex);
    constexpr std::size_t mostRemembered = 4 * mostManifests;
    if (m_byPath.size() >= mostRemembered)
        m_byPath.clear();
    m_byPath.insert_or_assign(path, Remembered{file.version(), manifest});
    return manifest;
}

bool OllamaStores::leadsTo(const OllamaManifest &manifest, const std::string &store,
                           const std::string &digest)
{
    const auto holds = [&digest](const OllamaManifest &one) {
        return std::ranges::find(one.models, digest) != one.models.end();
    };
    return holds(manifest)
        || std::ranges::any_of(manifest.manifests, [&](const std::string &listed) {
               return holds(manifestAt(blobPath(store, listed), store));
           });
}

} // namespace corvane
