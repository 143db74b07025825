#include "processes/ProcessSource_linux.h"

#include "platform/KernelFile_linux.h"
#include "platform/KernelText.h"
#include "platform/SecretText_linux.h"
#include "processes/KeptProcesses_linux.h"
#include "processes/ProcessFiles.h"

#include <array>
#include <memory>

#include <limits.h>
#include <unistd.h>

namespace corvane {

namespace {

std::string processFile(std::int32_t pid, const char *name, const std::string &root)
{
    return root + "/proc/" + std::to_string(pid) + '/' + name;
}

/// The target of a link; empty when it may not be read.
std::string linkTarget(const std::string &path)
{
    std::array<char, PATH_MAX> target = {};
    const ssize_t length = readlink(path.c_str(), target.data(), target.size());
    return {target.data(), length > 0 ? static_cast<std::size_t>(length) : 0};
}

std::optional<std::uint64_t> readFootprint(const FootprintBounds &bounds, const std::string &root)
{
    const auto status = readKernelFile(processFile(bounds.pid, "status", root));
    const auto swapped = status ? parseSwapped(*status) : std::nullopt;
    if (!swapped)
        return std::nullopt;
    return bounds.least + *swapped;
}

std::optional<std::string> readName(std::int32_t pid, KeptProcesses &kept, const std::string &root)
{
    const auto comm = kept.comm(pid);
    if (!comm)
        return std::nullopt;
    const std::string_view name = parseProcessName(*comm);
    if (!mayBeCut(name))
        return std::string(name);
    return std::string(completedName(name, linkTarget(processFile(pid, "exe", root))));
}

std::optional<std::int32_t> readParent(std::int32_t pid, const std::string &root)
{
    const auto stat = readKernelFile(processFile(pid, "stat", root));
    return stat ? parseParent(*stat) : std::nullopt;
}

std::optional<std::string> readFolder(std::int32_t pid, const std::string &root)
{
    std::string folder = linkTarget(processFile(pid, "cwd", root));
    return folder.empty() || !isUtf8(folder) ? std::nullopt : std::optional(std::move(folder));
}

std::optional<ArgumentRecord> readArguments(std::int32_t pid, const std::string &root)
{
    const std::string link = linkTarget(processFile(pid, "exe", root));
    constexpr std::size_t longest = 256 << 10; // A thousand times the usual.
    const SecretText file(processFile(pid, "cmdline", root), longest);
    std::string_view commandLine = file.text();
    if (link.empty() && commandLine.empty())
        return std::nullopt;
    if (commandLine.size() == longest) // It was cut, perhaps within an argument.
        commandLine = commandLine.substr(0, commandLine.rfind('\0') + 1);
    auto argv = parseCommandLine(commandLine);
    if (!argv)
        return std::nullopt;
    const std::string_view path = executablePath(link);
    return ArgumentRecord{.path = std::string(isUtf8(path) ? path : std::string_view()),
                          .argv = std::move(*argv)};
}

} // namespace

ProcessSource linuxProcesses(const std::string &root)
{
    const auto kept = std::make_shared<KeptProcesses>(root);
    return {
        .footprints = [kept] { return kept->footprints(); },
        .footprint = [root](const FootprintBounds &bounds) { return readFootprint(bounds, root); },
        .name = [kept, root](std::int32_t pid) { return readName(pid, *kept, root); },
        .identity = [kept](std::int32_t pid) { return kept->identity(pid); },
        .arguments = [root](std::int32_t pid) { return readArguments(pid, root); },
        .parent = [root](std::int32_t pid) { return readParent(pid, root); },
        .folder = [root](std::int32_t pid) { return readFolder(pid, root); },
        .rest = [kept] { kept->close(); },
    };
}

ProcessSource ProcessSource::system()
{
    return linuxProcesses("/");
}

} // namespace corvane
