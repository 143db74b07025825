#include "platform/KernelFolder_linux.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace corvane {

KernelFolder::KernelFolder(const std::string &path) : m_folder(opendir(path.c_str())) { }

const char *KernelFolder::nextName()
{
    while (const dirent *entry = m_folder ? readdir(m_folder.get()) : nullptr) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..")
            return entry->d_name;
    }
    return nullptr;
}

std::vector<std::string> namesInFolder(const std::string &path)
{
    KernelFolder folder(path);
    std::vector<std::string> names;
    while (const char *name = folder.nextName())
        names.emplace_back(name);
    std::ranges::sort(names, {},
                      [](const std::string &name) { return std::pair(name.size(), name); });
    return names;
}

} // namespace corvane
