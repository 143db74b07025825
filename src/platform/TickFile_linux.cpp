#include "platform/TickFile_linux.h"

#include <utility>

namespace corvane {

TickFile::TickFile(const std::string &path, std::function<double()> now)
    : m_file(path),
      m_now(std::move(now))
{
    if (isMountPoint(path))
        m_reader = std::make_unique<BackgroundReader<Text>>(
            [path] { return [path](double) { return readKernelFile(path); }; });
}

std::optional<std::string_view> TickFile::read()
{
    constexpr ReaderPatience patience = {.first = std::chrono::milliseconds(100),
                                         .later = std::chrono::milliseconds(20)};
    if (!m_reader)
        return m_file.read();
    const double now = m_now();
    m_reader->request(now, patience);
    m_newest = m_reader->newest(now).value_or(std::nullopt);
    return m_newest;
}

} // namespace corvane
