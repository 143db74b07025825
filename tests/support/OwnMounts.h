#pragma once

namespace corvane::test {

/// Gives this process, and those that it starts from now on, mounts that no other one sees; false
/// where the system does not let it. Has to come before the first thread. Linux.
bool takeMountsOfItsOwn();

} // namespace corvane::test
