#pragma once

#include "models/BoundedFile.h"
#include "models/OllamaManifest.h"
#include "threads/Mutex.h"

#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace corvane {

/// Until when work may go on. Empty: without limit. Any thread.
using IsOutOfTime = std::function<bool()>;

/// Finds the names of models in Ollama's stores by the digest of their weights. Remembers what a
/// manifest leads to until it changes. Safe from any thread; no lock is held while a file is read.
///
/// A store has the folders `manifests-v2/` (newer) and `manifests/`, each with the four levels
/// host, namespace, model and tag; the manifest of a tag is JSON, may be a link to a file in
/// `blobs/`, and may be a list whose digests are manifests in `blobs/`. Where both folders have a
/// tag the newer one holds.
class OllamaStores {
public:
    static constexpr std::size_t mostManifests = 512;
    static constexpr std::size_t longestManifest = 4 << 20; ///< In bytes; longer ones are skipped.

    struct Answer {
        std::vector<std::string> names = {}; ///< The shortest first; empty: none is known.
        bool isComplete = true; ///< False when time ran out before all manifests were read.
    };

    Answer namesOf(const std::string &store, const std::string &digest,
                   const IsOutOfTime &isOutOfTime = {});

private:
    struct Remembered {
        BoundedFile::Version version = {};
        OllamaManifest manifest = {};
    };

    OllamaManifest manifestAt(const std::string &path, const std::string &store);
    OllamaManifest read(const BoundedFile &file, const std::string &path);
    bool leadsTo(const OllamaManifest &manifest, const std::string &store,
                 const std::string &digest);

    Mutex m_mutex;
    std::map<std::string, Remembered> m_byPath GUARDED_BY(m_mutex);
};

} // namespace corvane
