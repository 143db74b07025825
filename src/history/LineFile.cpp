#include "history/LineFile.h"

#include "platform/FileDescriptor.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <utility>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane {

namespace {

constexpr std::size_t chunkSize = std::size_t(64) << 10;

/// Where a line lies in the file.
struct Line {
    std::size_t start = 0;
    std::size_t length = 0;
};

std::size_t size(const FileDescriptor &file)
{
    struct stat status = {};
    return fstat(file.get(), &status) == 0 ? static_cast<std::size_t>(status.st_size) : 0;
}

/// Fills `into` with what stands at `offset`; false if the file ends earlier or cannot be read.
bool readAt(const FileDescriptor &file, char *into, std::size_t length, std::size_t offset)
{
    while (length > 0) {
        const ssize_t count = pread(file.get(), into, length, static_cast<off_t>(offset));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        into += count;
        offset += static_cast<std::size_t>(count);
        length -= static_cast<std::size_t>(count);
    }
    return true;
}

bool writeAll(const FileDescriptor &file, const char *from, std::size_t length)
{
    while (length > 0) {
        const ssize_t count = write(file.get(), from, length);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return false;
        from += count;
        length -= static_cast<std::size_t>(count);
    }
    return true;
}

/// What the disk does not take of it is lost.
void writeOnce(const FileDescriptor &file, const std::string &text)
{
    while (write(file.get(), text.data(), text.size()) < 0 && errno == EINTR) { }
}

/// The last `count` lines, in the file's order; absent if it cannot be read. Reads backwards and no
/// further than needed.
std::optional<std::vector<Line>> lastLines(const FileDescriptor &file, std::size_t count)
{
    const std::size_t fileSize = size(file);
    const std::size_t floor = fileSize - std::min(fileSize, LineFile::maxBytes);
    std::vector<Line> lines;
    std::string chunk;
    std::size_t end = fileSize; // End of the line whose start is searched for.
    for (std::size_t at = fileSize; at > floor && lines.size() < count;) {
        chunk.resize(std::min(chunkSize, at - floor));
        at -= chunk.size();
        if (!readAt(file, chunk.data(), chunk.size(), at))
            return std::nullopt;
        std::size_t feed = chunk.size();
        while (lines.size() < count && feed > 0
               && (feed = chunk.rfind('\n', feed - 1)) != std::string::npos) {
            const std::size_t start = at + feed + 1;
            if (start < end)
                lines.push_back({start, end - start});
            end = at + feed;
        }
    }
    if (floor == 0 && end > 0 && lines.size() < count)
        lines.push_back({0, end});
    std::ranges::reverse(lines);
    return lines;
}

/// Copies the lines, each followed by a line feed.
bool copyLines(const FileDescriptor &from, const std::vector<Line> &lines, const FileDescriptor &to)
{
    std::string chunk;
    for (const Line &line : lines) {
        for (std::size_t done = 0; done < line.length; done += chunk.size()) {
            chunk.resize(std::min(chunkSize, line.length - done));
            if (!readAt(from, chunk.data(), chunk.size(), line.start + done))
                return false;
            if (done + chunk.size() == line.length)
                chunk += '\n';
            if (!writeAll(to, chunk.data(), chunk.size()))
                return false;
        }
    }
    return true;
}

} // namespace

LineFile::LineFile(std::string path) : m_path(std::move(path)) { }

void LineFile::create(const std::string &firstLine) const
{
    m_thread.check();
    constexpr mode_t others = 0077;
    const FileDescriptor created(
        open(m_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (created && !firstLine.empty())
        writeOnce(created, firstLine + '\n');
    const FileDescriptor file = openRegular(m_path, FileAccess::read);
    struct stat status = {};
    if (file && fstat(file.get(), &status) == 0 && status.st_uid == geteuid()
        && (status.st_mode & others) != 0)
        fchmod(file.get(), status.st_mode & 0700);
}

void LineFile::append(const std::string &line) const
{
    m_thread.check();
    const FileDescriptor file = openRegular(m_path, FileAccess::append);
    if (file && mayGrow(size(file)))
        writeOnce(file, line + '\n');
}

void LineFile::appendWhole(const std::string &line, const std::string &firstLine) const
{
    m_thread.check();
    const FileDescriptor file = openRegular(m_path, FileAccess::append);
    const FileDescriptor read = openRegular(m_path, FileAccess::read);
    if (!file || !read || !mayGrow(size(file)))
        return;
    const std::size_t length = size(read);
    char last = '\n';
    if (length > 0 && !readAt(read, &last, 1, length - 1))
        return;
    const std::string before = length == 0 ? firstLine + '\n' : last == '\n' ? "" : "\n";
    writeOnce(file, before + line + '\n');
}

bool LineFile::mayGrow(std::size_t size) const
{
    return !m_isUncut || size < mostUncutBytes;
}

std::string LineFile::first() const
{
    m_thread.check();
    constexpr std::size_t mostBytes = 256;
    const FileDescriptor file = openRegular(m_path, FileAccess::read);
    if (!file)
        return {};
    std::string text(std::min(size(file), mostBytes), '\0');
    if (!readAt(file, text.data(), text.size(), 0))
        return {};
    return text.substr(0, text.find('\n'));
}

void LineFile::forEach(const std::function<void(std::string_view)> &visit) const
{
    m_thread.check();
    const FileDescriptor file = openRegular(m_path, FileAccess::read);
    if (!file)
        return;
    const std::size_t end = size(file);
    std::string text; // A part of the file that begins with a line.
    std::size_t at = end - std::min(end, maxBytes);
    bool isPiece = at > 0; // The line before the next line feed is too long or begins earlier.
    while (at < end) {
        const std::size_t kept = text.size();
        const std::size_t count = std::min(chunkSize, end - at);
        text.resize(kept + count);
        if (!readAt(file, text.data() + kept, count, at))
            return;
        at += count;
        std::size_t start = 0;
        for (std::size_t feed = 0; (feed = text.find('\n', start)) != std::string::npos;
             start = feed + 1) {
            const bool isWhole = !std::exchange(isPiece, false);
            if (isWhole && feed > start && feed - start <= longestLine)
                visit(std::string_view(text).substr(start, feed - start));
        }
        text.erase(0, start);
        isPiece = isPiece || text.size() > longestLine;
        if (isPiece)
            text.clear();
    }
    if (!text.empty() && !isPiece)
        visit(text);
}

std::vector<std::string> LineFile::last(std::size_t count) const
{
    m_thread.check();
    std::vector<std::string> texts;
    const FileDescriptor file = openRegular(m_path, FileAccess::read);
    if (!file)
        return texts;
    for (const Line &line : lastLines(file, count).value_or(std::vector<Line>())) {
        if (line.length > longestLine)
            continue;
        std::string text(line.length, '\0');
        if (readAt(file, text.data(), text.size(), line.start))
            texts.push_back(std::move(text));
    }
    return texts;
}

void LineFile::keepLast(std::size_t count) const
{
    keepLast(count, {});
}

void LineFile::keepLast(std::size_t count, const std::string &firstLine) const
{
    m_thread.check();
    m_isUncut = !cut(count, firstLine);
}

/// Whether the file has no more lines than that now.
bool LineFile::cut(std::size_t count, const std::string &firstLine) const
{
    const FileDescriptor file = openRegular(m_path, FileAccess::read);
    if (!file)
        return false;
    // One more than is kept, to see whether there is anything to cut.
    const std::size_t most = count + (firstLine.empty() ? 0 : 1);
    auto lines = lastLines(file, most + 1);
    if (!lines)
        return false;
    if (lines->size() <= most)
        return true;
    lines->erase(lines->begin(), lines->end() - static_cast<std::ptrdiff_t>(count));

    // A link to the file stays a link: what it points to is replaced.
    std::error_code error;
    const std::string path = std::filesystem::canonical(m_path, error).string();
    struct stat status = {};
    if (error || fstat(file.get(), &status) != 0)
        return false;

    // Always of the same name, so that one left behind by a killed process is replaced.
    const std::string newPath = path + ".new";
    unlink(newPath.c_str());
    const FileDescriptor newFile(
        open(newPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!newFile)
        return false;
    fchmod(newFile.get(), status.st_mode & 07777); // Some file systems have no permissions.
    // On the disk before it takes the name, so that one of the two is whole after a power cut.
    const std::string first = firstLine.empty() ? std::string() : firstLine + '\n';
    const bool complete = writeAll(newFile, first.data(), first.size())
        && copyLines(file, *lines, newFile) && fsync(newFile.get()) == 0
        && rename(newPath.c_str(), path.c_str()) == 0;
    if (!complete)
        unlink(newPath.c_str());
    return complete;
}

} // namespace corvane
