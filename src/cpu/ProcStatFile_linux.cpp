#include "cpu/ProcStatFile_linux.h"

#include <utility>

namespace corvane {

ProcStatFile::ProcStatFile(const std::string &root, std::function<double()> now)
    : m_file(root + "/proc/stat", std::move(now))
{
}

std::optional<std::vector<CoreTicks>> ProcStatFile::read()
{
    m_thread.check();
    return m_counters.update(m_file.read().value_or(std::string_view()));
}

} // namespace corvane
