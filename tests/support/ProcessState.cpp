#include "support/ProcessState.h"

#include <QDir>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace corvane::test {

qint64 heapInUse()
{
#ifdef __GLIBC__
    const auto info = mallinfo2();
    return static_cast<qint64>(info.uordblks + info.hblkhd);
#else
    return 0;
#endif
}

qsizetype openDescriptors()
{
    // Includes folders, and files that were deleted.
    constexpr auto all = QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot;
    return QDir(QStringLiteral("/dev/fd")).entryList(all).size();
}

} // namespace corvane::test
