#include "models/OllamaManifest.h"

#include <cstddef>
#include <cstdint>

using namespace corvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto manifest = parseOllamaManifest({reinterpret_cast<const char *>(data), size});
    if (!manifest)
        return 0;
    for (const auto *digests : {&manifest->models, &manifest->manifests}) {
        if (digests->size() > mostDigests)
            __builtin_trap();
        for (const std::string &digest : *digests) {
            if (!digestDigits("sha256:" + digest))
                __builtin_trap();
        }
    }
    return 0;
}
