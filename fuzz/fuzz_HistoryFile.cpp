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

/// A file of this process's own, in memory where there is such a folder.
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

/// The first byte says how many lines are wanted, the others are the file. Reading it backwards has
/// to find what a plain split finds, and a cut leaves just that.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::size_t count = data[0];
    const std::string_view contents(reinterpret_cast<const char *>(data) + 1, size - 1);
    write(contents);

    std::vector<std::string> expected = pieces(contents);
    expected.erase(expected.begin(),
                   expected.end() - std::ptrdiff_t(std::min(count, expected.size())));
    const LineFile file(path());
    if (file.last(count) != expected)
        __builtin_trap();
    file.keepLast(count);
    if (file.last(size) != expected)
        __builtin_trap();
    std::remove(path().c_str());
    return 0;
}
