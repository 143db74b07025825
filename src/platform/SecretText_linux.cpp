#include "platform/SecretText_linux.h"

#include "platform/FileDescriptor.h"
#include "platform/Wipe.h"

#include <span>

#include <unistd.h>

namespace corvane {

// Memory that is not written costs nothing, so it is asked for uninitialised.
SecretText::SecretText(const std::string &path, std::size_t limit)
    : m_bytes(std::make_unique_for_overwrite<char[]>(limit))
{
    const FileDescriptor file = openRegular(path, FileAccess::read);
    while (file && m_length < limit) {
        const ssize_t count = read(file.get(), m_bytes.get() + m_length, limit - m_length);
        if (count <= 0)
            return;
        m_length += static_cast<std::size_t>(count);
    }
}

SecretText::~SecretText()
{
    std::span contents(m_bytes.get(), m_length);
    wipe(contents);
}

} // namespace corvane
