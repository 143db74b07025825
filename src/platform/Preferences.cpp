#include "platform/Preferences.h"

#include "platform/HostSystem.h"
#include "threads/MainThread.h"
#include "threads/ThreadStart.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

#include <algorithm>
#include <memory>
#include <utility>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;
using Clock = std::chrono::steady_clock;

/// Whether the library may read the file. For some that are not regular it would wait for ever, and
/// a large one it would read into memory.
bool isSound(const QString &path)
{
    constexpr qint64 mostBytes = 1 << 20;
    const QFileInfo file(path);
    return !file.exists() || (file.isFile() && file.size() <= mostBytes);
}

/// Null where this user's files, on Linux, must not be read.
std::unique_ptr<QSettings> openSettings()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + u'/' + QCoreApplication::organizationName();
    const QString file = folder + u'/' + QCoreApplication::applicationName() + u".conf"_s;
    if (hostSystem() == HostSystem::linuxDesktop
        && !(isSound(file) && isSound(folder + u".conf"_s)))
        return nullptr;
    return std::make_unique<QSettings>();
}

/// What is left until the deadline; 0 behind it.
std::chrono::milliseconds until(Clock::time_point deadline)
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    return std::max(left, std::chrono::milliseconds(0));
}

} // namespace

Preferences::Preferences(std::chrono::milliseconds patience)
    : m_patience(patience),
      m_store(std::make_shared<Store>())
{
    assertMainThread();
    std::thread reader = startThread([store = m_store] { read(*store); });
    if (!reader.joinable())
        return;
    reader.detach();
    const Clock::time_point deadline = Clock::now() + patience;
    MutexLock lock(m_store->mutex);
    while (!m_store->isRead && until(deadline).count() > 0)
        m_store->changed.waitFor(lock, until(deadline));
    m_values = m_store->read;
}

Preferences::~Preferences()
{
    const Clock::time_point deadline = Clock::now() + m_patience;
    startWriting();
    MutexLock lock(m_store->mutex);
    while (m_store->isWriting && until(deadline).count() > 0)
        m_store->changed.waitFor(lock, until(deadline));
}

void Preferences::setValue(const QString &key, const QVariant &value)
{
    assertMainThread();
    m_values.insert(key, value);
    {
        const MutexLock lock(m_store->mutex);
        m_store->unwritten.insert(key, value);
    }
    startWriting();
}

/// Without a thread the values stay for the next attempt.
void Preferences::startWriting()
{
    {
        const MutexLock lock(m_store->mutex);
        if (m_store->isWriting || m_store->unwritten.isEmpty())
            return;
        m_store->isWriting = true;
    }
    std::thread writer = startThread([store = m_store] { write(*store); });
    if (writer.joinable()) {
        writer.detach();
        return;
    }
    const MutexLock lock(m_store->mutex);
    m_store->isWriting = false;
}

void Preferences::read(Store &store)
{
    QVariantMap values;
    if (const auto settings = openSettings()) {
        settings->setFallbacksEnabled(false);
        for (const QString &key : settings->allKeys()) {
            if (!key.isEmpty()) // A damaged file may have one; the library warns of it.
                values.insert(key, settings->value(key));
        }
    }
    const MutexLock lock(store.mutex);
    store.read = std::move(values);
    store.isRead = true;
    store.changed.notifyAll();
}

void Preferences::write(Store &store)
{
    for (;;) {
        QVariantMap values;
        {
            const MutexLock lock(store.mutex);
            values = std::exchange(store.unwritten, {});
            if (values.isEmpty()) {
                store.isWriting = false;
                store.changed.notifyAll();
                return;
            }
        }
        const auto settings = openSettings();
        if (!settings)
            continue;
        for (auto value = values.cbegin(); value != values.cend(); ++value)
            settings->setValue(value.key(), value.value());
        settings->sync();
    }
}

} // namespace corvane
