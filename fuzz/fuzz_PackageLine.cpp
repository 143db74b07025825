#include "updates/PackageLine.h"

#include <cstddef>
#include <cstdint>

using namespace corvane;

/// Parses each line as a package's id, with the states of a package in turn.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    QList<PackageLine> lines;
    unsigned int info = 0;
    for (const QByteArray &id : bytes.split('\n')) {
        if (const auto line = packageLine(++info % 11, QString::fromUtf8(id)))
            lines += *line;
    }
    const auto version = updateVersion(lines, lines);
    if (version && (version == installedVersion(lines) || !hasOtherVersion(lines)))
        __builtin_trap(); // The installed version is not an update.
    return 0;
}
