#include "models/ModelFiles.h"

#include <libproc.h>

#include <algorithm>

#include <string.h>

namespace corvane {

namespace {

std::string pathIn(const vnode_info_path &info)
{
    return {info.vip_path, strnlen(info.vip_path, sizeof info.vip_path)};
}

std::vector<MappedFile> mappedFiles(std::int32_t pid)
{
    constexpr int mostRegions = 20'000;
    std::vector<MappedFile> files;
    std::uint64_t address = 0;
    for (int region = 0; region < mostRegions; ++region) {
        proc_regionwithpathinfo info = {};
        if (proc_pidinfo(pid, PROC_PIDREGIONPATHINFO, address, &info, sizeof info) != sizeof info)
            break;
        addMapping(files, pathIn(info.prp_vip), info.prp_prinfo.pri_size);
        const std::uint64_t end = info.prp_prinfo.pri_address + info.prp_prinfo.pri_size;
        if (end <= address)
            break;
        address = end;
    }
    return files;
}

std::vector<proc_fdinfo> descriptorsOf(std::int32_t pid)
{
    constexpr std::size_t most = 4096;
    std::vector<proc_fdinfo> list(most);
    const int room = static_cast<int>(list.size() * sizeof(proc_fdinfo));
    const int size = proc_pidinfo(pid, PROC_PIDLISTFDS, 0, list.data(), room);
    list.resize(static_cast<std::size_t>(std::clamp(size, 0, room)) / sizeof(proc_fdinfo));
    return list;
}

std::vector<std::string> openedFiles(std::int32_t pid)
{
    std::vector<std::string> paths;
    for (const proc_fdinfo &descriptor : descriptorsOf(pid)) {
        vnode_fdinfowithpath info = {};
        if (descriptor.proc_fdtype != PROX_FDTYPE_VNODE
            || proc_pidfdinfo(pid, descriptor.proc_fd, PROC_PIDFDVNODEPATHINFO, &info, sizeof info)
                != sizeof info)
            continue;
        std::string path = pathIn(info.pvip);
        if (isModelPath(path))
            paths.push_back(std::move(path));
    }
    return paths;
}

} // namespace

ModelFiles ModelFiles::system()
{
    return {
        .mapped = mappedFiles,
        .opened = openedFiles,
        .reachable = [](std::int32_t, const std::string &path) { return path; },
    };
}

} // namespace corvane
