#pragma once

#include <string>

namespace corvane::test {

/// Has calls of the system that the program's own sources make fail or wait, for the files that a
/// test names: the layer beneath the readers, between our objects and the C library. A test that
/// uses it links `corvane_faulty_calls`. Safe from any thread; Linux.
///
/// A file is named by the end of its path. Faults hold for the calls to come, the newest first; all
/// are gone with `clear`.
namespace FaultyCalls {

enum class Call { open, read, write, sync, rename, lock };

constexpr int forEver = -1;

/// The next calls of that kind fail with this errno.
void fail(Call call, const std::string &file, int error, int times = forEver);

/// The next write takes only so many bytes.
void cutNextWrite(const std::string &file, std::size_t bytes);

/// The next calls of that kind are carried out, whatever was planned for them before.
void letPass(Call call, const std::string &file, int times);

/// The process is killed at the next call of that kind.
enum class Moment { before, after };
void killAt(Call call, const std::string &file, Moment moment);

/// The process is killed when so many bytes of the next write are in the file.
void killInNextWrite(const std::string &file, std::size_t bytes);

/// The next call of that kind waits until `letGo`.
void stall(Call call, const std::string &file);

/// Returns when a call waits.
void waitForStalled();
void letGo();

/// Takes all faults away and lets go of what waits.
void clear();

} // namespace FaultyCalls

} // namespace corvane::test
