#include "gpuclients/DrmClientFiles_linux.h"

#include "platform/KernelFile_linux.h"
#include "platform/KernelFolder_linux.h"

#include <array>
#include <string_view>

#include <unistd.h>

namespace corvane {

namespace {

constexpr double secondsKept = 10;
constexpr int mostDescriptors = 1024; ///< Of one process; servers may have a million.
constexpr std::size_t mostClients = 64;
constexpr std::size_t longestText = 16 << 10;

std::string folderOf(const std::string &root, std::int32_t pid, const char *name)
{
    return root + "/proc/" + std::to_string(pid) + '/' + name;
}

} // namespace

DrmClientFiles::DrmClientFiles(std::string root) : m_root(std::move(root)) { }

const std::vector<DrmClientFiles::Descriptor> &DrmClientFiles::descriptorsOf(std::int32_t pid,
                                                                             double now)
{
    constexpr std::string_view nodes = "/dev/dri/";
    const auto [place, isNew] = m_processes.try_emplace(pid);
    Entry &entry = place->second;
    if (!isNew && now - entry.seconds < secondsKept)
        return entry.descriptors;
    entry = {.seconds = now};
    KernelFolder folder(folderOf(m_root, pid, "fd"));
    for (int looked = 0; folder && looked < mostDescriptors; ++looked) {
        const char *const number = folder.nextName();
        if (!number || entry.descriptors.size() == mostClients)
            break;
        std::array<char, 64> target = {};
        const ssize_t length =
            readlinkat(folder.descriptor(), number, target.data(), target.size());
        const std::string_view path(target.data(), length > 0 ? std::size_t(length) : 0);
        if (path.starts_with(nodes))
            entry.descriptors.push_back({number, std::string(path.substr(nodes.size()))});
    }
    return entry.descriptors;
}

std::vector<DrmClient> DrmClientFiles::clientsOf(std::int32_t pid,
                                                 const std::set<std::string> &nodes, double now)
{
    std::vector<DrmClient> clients;
    for (const Descriptor &descriptor : descriptorsOf(pid, now)) {
        if (!nodes.contains(descriptor.node))
            continue;
        const auto text =
            readKernelFile(folderOf(m_root, pid, "fdinfo/") + descriptor.number, longestText);
        auto client = parseDrmClient(text.value_or(std::string()));
        if (!client)
            continue;
        if (client->id.empty())
            client->id = std::to_string(pid) + '/' + descriptor.number;
        clients.push_back(std::move(*client));
    }
    return clients;
}

void DrmClientFiles::forgetOld(double now)
{
    std::erase_if(m_processes, [now](const auto &process) {
        return now - process.second.seconds > 2 * secondsKept;
    });
}

} // namespace corvane
