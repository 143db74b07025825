#include "tray/TrayAdvice.h"

#include <cstdint>
#include <cstdlib>

using namespace corvane;

/// Any bytes as a system's os-release.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view osRelease(reinterpret_cast<const char *>(data), size);
    const QStringList gnome{QStringLiteral("GNOME")};
    // No bytes of the file reach the sentence.
    const QString advice = trayAdvice(gnome, osRelease);
    if (advice != trayAdvice(gnome, "") && advice != trayAdvice(gnome, "ID=debian"))
        std::abort();
    if (trayAdvice({}, osRelease) != trayAdvice({}, ""))
        std::abort();
    return 0;
}
