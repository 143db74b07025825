#include "support/AccessWatch.h"

#include <QSet>

#include <array>
#include <filesystem>

#include <sys/inotify.h>
#include <unistd.h>

namespace corvane::test {

namespace fs = std::filesystem;

AccessWatch::AccessWatch(const std::string &folder)
    : m_descriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
{
    if (m_descriptor < 0)
        qFatal("no inotify");
    add(folder, {});
    for (const fs::directory_entry &entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_directory() && !entry.is_symlink())
            add(entry.path().string(),
                QString::fromStdString(fs::relative(entry.path(), folder).string()) + u'/');
    }
    touched(); // Discards the listing above.
}

AccessWatch::~AccessWatch()
{
    close(m_descriptor);
}

void AccessWatch::add(const std::string &folder, const QString &relativePath)
{
    const int watch = inotify_add_watch(m_descriptor, folder.c_str(), IN_OPEN | IN_ACCESS);
    if (watch < 0)
        qFatal("no watch");
    m_folders.insert(watch, relativePath);
}

QStringList AccessWatch::touched()
{
    QSet<QString> files;
    alignas(inotify_event) std::array<char, 65'536> buffer;
    ssize_t length = 0;
    while ((length = read(m_descriptor, buffer.data(), buffer.size())) > 0) {
        for (const char *at = buffer.data(); at < buffer.data() + length;) {
            const auto *event = reinterpret_cast<const inotify_event *>(at);
            at += sizeof(inotify_event) + event->len;
            if ((event->mask & IN_ISDIR) == 0 && event->len > 0)
                files.insert(m_folders.value(event->wd) + QString::fromUtf8(event->name));
        }
    }
    QStringList sorted(files.begin(), files.end());
    sorted.sort();
    return sorted;
}

} // namespace corvane::test
