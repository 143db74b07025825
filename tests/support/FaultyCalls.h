#pragma once

#include <string>
#include <vector>

namespace corvane::test {

/// Makes system calls of the program's own sources fail or wait, for files that a test names. It
/// lies between our objects and the C library. A test that uses it links `corvane_faulty_calls`.
/// Safe from any thread; Linux.
///
/// A file is named by the end of its path. Faults apply to future calls, the newest fault first,
/// until `clear`.
namespace FaultyCalls {

enum class Call { open, read, write, sync, rename, lock };

constexpr int forEver = -1;

/// The next calls of that kind fail with this errno.
void fail(Call call, const std::string &file, int error, int times = forEver);

/// The next write writes only this many bytes.
void cutNextWrite(const std::string &file, std::size_t bytes);

/// The next calls of that kind succeed, whatever faults were added before.
void letPass(Call call, const std::string &file, int times);

/// The process is killed at the next call of that kind.
enum class Moment { before, after };
void killAt(Call call, const std::string &file, Moment moment);

/// The process is killed when this many bytes of the next write are in the file.
void killInNextWrite(const std::string &file, std::size_t bytes);

/// The next call of that kind waits until `letGo`.
void stall(Call call, const std::string &file);

/// Blocks until a call waits.
void waitForStalled();

/// Ends the wait of the stalled call.
void letGo();

/// The paths that this thread has opened, or tried to, since it asked last.
std::vector<std::string> takeOpenedHere();

/// Removes all faults and ends all waits.
void clear();

} // namespace FaultyCalls

} // namespace corvane::test
