#include "Runs.h"

#include "history/LineFile.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include <unistd.h>

using namespace corvane;

namespace {

/// The path of a file of this process, in memory where there is such a folder.
const std::string &path()
{
    static const std::string chosen = (access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp")
        + std::string("/corvane-fuzz-") + std::to_string(getpid());
    return chosen;
}

void write(std::string_view contents)
{
    std::FILE *file = std::fopen(path().c_str(), "wb");
    if (!file || std::fwrite(contents.data(), 1, contents.size(), file) != contents.size())
        __builtin_trap();
    std::fclose(file);
}

std::string read()
{
    std::FILE *file = std::fopen(path().c_str(), "rb");
    if (!file)
        __builtin_trap();
    std::string contents;
    char chunk[4096];
    while (const std::size_t count = std::fread(chunk, 1, sizeof chunk, file))
        contents.append(chunk, count);
    std::fclose(file);
    return contents;
}

std::vector<std::string> pieces(std::string_view contents)
{
    std::vector<std::string> all;
    while (!contents.empty()) {
        const std::string_view piece = contents.substr(0, contents.find('\n'));
        contents.remove_prefix(std::min(piece.size() + 1, contents.size()));
        if (!piece.empty())
            all.emplace_back(piece);
    }
    return all;
}

} // namespace

/// The first byte is the number of lines to read, the others are the file. Reading it backwards
/// must find the lines that a plain split finds, except overlong ones, and a cut must keep them.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::size_t count = data[0];
    const std::string contents = fuzz::withRuns(data + 1, size - 1);
    write(contents);

    std::vector<std::string> kept = pieces(contents);
    const bool isCut = kept.size() > count;
    if (isCut)
        kept.erase(kept.begin(), kept.end() - std::ptrdiff_t(count));
    std::string cut;
    for (const std::string &line : kept)
        cut += line + '\n';
    std::vector<std::string> shown = kept;
    std::erase_if(shown, [](const auto &line) { return line.size() > LineFile::longestLine; });

    const LineFile file(path());
    if (file.last(count) != shown)
        __builtin_trap();
    file.keepLast(count);
    if (read() != (isCut ? cut : contents) || file.last(contents.size()) != shown)
        __builtin_trap();
    std::remove(path().c_str());
    return 0;
}
