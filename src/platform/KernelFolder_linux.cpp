#include "platform/KernelFolder.h"

#include <algorithm>
#include <filesystem>
#include <utility>

namespace corvane {

std::vector<std::string> namesInFolder(const std::string &folder)
{
    std::vector<std::string> names;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error))
        names.push_back(entry->path().filename().string());
    std::ranges::sort(names, {},
                      [](const std::string &name) { return std::pair(name.size(), name); });
    return names;
}

} // namespace corvane
