#include "login/Autostart_linux.h"

#include "login/DesktopEntry.h"
#include "platform/FileDescriptor.h"
#include "threads/MainThread.h"
#include "threads/TimedCalls.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// Bytes of an entry file; a longer one counts as unreadable.
constexpr qint64 longestEntry = qint64(64) * 1024;

/// The user waits for a change, but the start of the program for the state.
constexpr std::chrono::milliseconds patienceForState(250);
constexpr std::chrono::milliseconds patienceForChange(2000);

/// Whether the path is taken, be it by a broken link, which overrides a system-wide entry too.
bool exists(const QString &file)
{
    const QFileInfo info(file);
    return info.exists() || info.isSymLink();
}

std::optional<DesktopEntry> readEntry(const QString &file)
{
    const FileDescriptor source =
        openRegular(QFile::encodeName(file).toStdString(), FileAccess::read);
    QFile entry;
    if (!source || !entry.open(source.get(), QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray bytes = entry.read(longestEntry + 1);
    return bytes.size() <= longestEntry ? desktopEntry(bytes) : std::nullopt;
}

QString systemWideEntry()
{
    for (const QString &file : autostartFiles().mid(1)) {
        if (exists(file))
            return file;
    }
    return {};
}

bool isEnabled(const QString &program)
{
    const QString own = autostartFiles().constFirst();
    const auto entry = readEntry(exists(own) ? own : systemWideEntry());
    if (!entry || !isStarted(*entry, currentDesktops()))
        return false;
    if (!entry->tryExec.isEmpty() && QStandardPaths::findExecutable(entry->tryExec).isEmpty())
        return false;
    const QString started = QStandardPaths::findExecutable(entry->program);
    return !started.isEmpty()
        && QFileInfo(started).canonicalFilePath() == QFileInfo(program).canonicalFilePath();
}

/// Creates a folder and those above it, for the user alone, as the XDG base directory standard
/// requires.
bool makeFolder(const QString &path)
{
    if (QFileInfo(path).isDir())
        return true;
    const QString above = QFileInfo(path).path();
    return above != path && makeFolder(above)
        && QDir().mkdir(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

std::optional<QString> writeEntry(const QByteArray &content)
{
    const QString file = autostartFiles().constFirst();
    const QString folder = QFileInfo(file).path();
    if (!makeFolder(folder))
        return u"The folder \"%1\" cannot be made."_s.arg(folder);
    // Flushed first: a full disk is not noticed by the commit.
    QSaveFile target(file);
    if (target.open(QIODevice::WriteOnly) && target.write(content) == content.size()
        && target.flush() && target.commit())
        return std::nullopt;
    return u"\"%1\" cannot be written: %2."_s.arg(file, target.errorString());
}

std::optional<QString> enable(const QString &program)
{
    if (!QFileInfo(program).isFile())
        return u"Corvane's own program file is no longer in its place. Start Corvane again."_s;
    // Desktop entries do not allow it, and some desktops take it for a variable.
    if (program.contains(u'='))
        return u"A program whose path has an equals sign cannot be started at login: \"%1\"."_s.arg(
            program);
    return writeEntry(autostartEntry(program));
}

std::optional<QString> disable()
{
    if (!systemWideEntry().isEmpty())
        return writeEntry("[Desktop Entry]\nType=Application\nName=Corvane\nHidden=true\n");
    QFile own(autostartFiles().constFirst());
    if (!exists(own.fileName()) || own.remove())
        return std::nullopt;
    return u"\"%1\" cannot be removed: %2."_s.arg(own.fileName(), own.errorString());
}

using Change = std::function<std::optional<QString>()>;

Change timed(const std::shared_ptr<TimedCalls> &calls, const Change &change)
{
    return [calls, change] {
        return calls->call(change, patienceForChange)
            .value.value_or(u"\"%1\" cannot be reached."_s.arg(autostartFiles().constFirst()));
    };
}

} // namespace

QStringList autostartFiles()
{
    QStringList files = QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation);
    for (QString &file : files)
        file += "/autostart/"_L1 + QStringLiteral(CORVANE_IDENTIFIER) + ".desktop"_L1;
    return files;
}

LoginItem autostartItem(const QString &program)
{
    assertMainThread();
    // Of a file system that hangs one call is left behind, and no further one waits.
    const auto calls = std::make_shared<TimedCalls>(1);
    const std::function<bool()> state = [program] { return isEnabled(program); };
    return {.isEnabled = [=] { return calls->call(state, patienceForState).value.value_or(false); },
            .enable = timed(calls, [program] { return enable(program); }),
            .disable = timed(calls, disable)};
}

} // namespace corvane
