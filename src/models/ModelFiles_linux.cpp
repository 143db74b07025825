#include "models/ModelFiles_linux.h"

#include "models/BoundedFile.h"
#include "platform/KernelFile_linux.h"
#include "platform/KernelText.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr std::size_t longestMaps = 4 << 20; ///< Some 40,000 mappings.
constexpr std::size_t mostDescriptors = 4096;

std::string processFile(std::int32_t pid, const char *name, const std::string &root)
{
    return root + "/proc/" + std::to_string(pid) + '/' + name;
}

std::vector<std::string> openedFiles(std::int32_t pid, const std::string &root)
{
    const std::string folder = processFile(pid, "fd", root);
    std::vector<std::uint64_t> numbers;
    for (const std::string &name : folderNames(folder, mostDescriptors)) {
        if (const auto number = parseUnsigned(name))
            numbers.push_back(*number);
    }
    std::ranges::sort(numbers);
    std::vector<std::string> paths;
    for (const std::uint64_t number : numbers) {
        auto path = linkTarget(folder + '/' + std::to_string(number));
        if (path && isModelPath(*path) && isUtf8(*path))
            paths.push_back(*std::move(path));
    }
    return paths;
}

/// Below the process's own root where something else lies there, and the kernel lets this user
/// look.
std::string reachablePath(std::int32_t pid, const std::string &path, const std::string &root)
{
    std::string inside = processFile(pid, "root", root) + path;
    const auto own = fileIdentity(inside);
    return own && own != fileIdentity(path) ? inside : path;
}

} // namespace

ModelFiles linuxModelFiles(const std::string &root)
{
    return {
        .mapped =
            [root](std::int32_t pid) {
                return parseMaps(readKernelFile(processFile(pid, "maps", root), longestMaps)
                                     .value_or(std::string()));
            },
        .opened = [root](std::int32_t pid) { return openedFiles(pid, root); },
        .reachable = [root](std::int32_t pid,
                            const std::string &path) { return reachablePath(pid, path, root); },
    };
}

ModelFiles ModelFiles::system()
{
    return linuxModelFiles("");
}

} // namespace corvane
