#pragma once

#include <QtGlobal>

namespace corvane::test {

/// Bytes that this process has allocated on its heap; 0 where the allocator does not report them.
qint64 heapInUse();

/// The number of descriptors that this process has open.
qsizetype openDescriptors();

} // namespace corvane::test
