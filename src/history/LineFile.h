#pragma once

#include "threads/OneThread.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// A text file to which lines are added at the end and of which only the last ones matter. What
/// stands between two line feeds is a line; empty ones do not count, and the last may lack its line
/// feed. Used by one thread at a time.
///
/// Nothing here reports an error, and nothing waits for anything but the disk: a file that is
/// missing, refused or not regular (a folder, a FIFO, a device in its place) reads as empty and is
/// not written. Of a large file only the last `maxBytes` are read; a line that begins before them
/// does not count.
class LineFile {
public:
    explicit LineFile(std::string path);

    static constexpr std::size_t maxBytes = std::size_t(128) << 20;

    /// In bytes. A longer line is damage: it counts as a line and survives a cut, but `last` leaves
    /// it out.
    static constexpr std::size_t longestLine = std::size_t(64) << 10;

    /// In bytes. A file that could not be cut the last time does not grow beyond this.
    static constexpr std::size_t mostUncutBytes = std::size_t(4) << 20;

    /// Creates a file for its owner alone, unless something of that name exists: empty, or with
    /// that first line. Takes away what others may do with a file of this user.
    void create(const std::string &firstLine = {}) const;

    /// Adds the line and its line feed with one write. The file must exist.
    void append(const std::string &line) const;

    /// The same on a line of its own, also behind a piece that was cut in an earlier write. A file
    /// that is empty gets the first line before it.
    void appendWhole(const std::string &line, const std::string &firstLine) const;

    /// The first line, as far as it is not longer than a few words; empty if there is none.
    std::string first() const;

    /// Calls `visit` for each line that is not too long, in the file's order.
    void forEach(const std::function<void(std::string_view line)> &visit) const;

    /// The last `count` lines, in the file's order.
    std::vector<std::string> last(std::size_t count) const;

    /// Cuts the file to its last `count` lines, in one step: a reader sees the old contents or the
    /// new ones. A file with no more lines than that stays as it is, byte for byte.
    void keepLast(std::size_t count) const;

    /// The same for a file with a first line, which does not count and stays.
    void keepLast(std::size_t count, const std::string &firstLine) const;

private:
    bool cut(std::size_t count, const std::string &firstLine) const;
    bool mayGrow(std::size_t size) const;

    std::string m_path;
    mutable bool m_isUncut = false; ///< Whether the last cut failed.
    mutable OneThread m_thread;
};

} // namespace corvane
