#pragma once

namespace corvane::test {

/// Moves this process and its future children into a mount namespace of their own; false where the
/// system does not permit it. Has to be called before the first thread starts. Linux.
bool unshareMounts();

} // namespace corvane::test
