#include "login/DesktopEntry.h"

#include <cstddef>
#include <cstdint>

using namespace corvane;
using namespace Qt::StringLiterals;

/// Parses the bytes as an entry, then writes an entry for a program with that path and reads it
/// back.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    if (const auto entry = desktopEntry(bytes))
        isStarted(*entry, {u"GNOME"_s});

    const QString path = u'/' + QString::fromUtf8(bytes);
    if (path.contains(QChar(u'\0')) || path.contains(u'='))
        return 0; // Not a path, or one that is refused.
    const auto written = desktopEntry(autostartEntry(path));
    if (!written || written->program != path || written->tryExec != path)
        __builtin_trap();
    return 0;
}
