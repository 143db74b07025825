#pragma once

#include <string>
#include <vector>

namespace corvane {

/// A text file to which lines are added at the end and of which only the last ones matter. What
/// stands between two line feeds is a line; empty ones do not count, and the last may lack its line
/// feed. One thread at a time.
///
/// Nothing here blocks or fails aloud: a file that is missing, refused or not regular (a folder, a
/// FIFO, a device in its place) reads as empty and is not written. However large a file has become,
/// only its last `mostBytes` are looked at: a line that begins before them is out of sight.
class LineFile {
public:
    explicit LineFile(std::string path);

    static constexpr std::size_t mostBytes = std::size_t(128) << 20;

    /// A longer line is damage. It counts as a line and survives a cut, but is not handed out.
    static constexpr std::size_t longestLine = std::size_t(64) << 10;

    /// Makes an empty file when there is nothing of that name.
    void create() const;

    /// Adds the line and its line feed with one write. The file must exist.
    void append(const std::string &line) const;

    /// The last `count` lines, in the file's order.
    std::vector<std::string> last(std::size_t count) const;

    /// Cuts the file to its last `count` lines, in one step: a reader sees the old contents or the
    /// new ones. A file with no more lines than that stays as it is, byte for byte.
    void keepLast(std::size_t count) const;

private:
    std::string m_path;
};

} // namespace corvane
