#pragma once

#include <QtGlobal>

namespace corvane::test {

/// Bytes that this process holds on its heap; 0 where the allocator does not tell.
qint64 heapInUse();

/// Descriptors that this process has open.
qsizetype openDescriptors();

} // namespace corvane::test
