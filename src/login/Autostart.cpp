#include "login/Autostart.h"

#include "login/DesktopEntry.h"
#include "platform/FileDescriptor.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// No entry of use is longer.
constexpr qint64 longestEntry = qint64(64) * 1024;

/// A broken link is there too: it keeps the system's entry from counting.
bool isThere(const QString &file)
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
    for (const QString &file : autostartPlaces().mid(1)) {
        if (isThere(file))
            return file;
    }
    return {};
}

bool isOn(const QString &program)
{
    const QString own = autostartPlaces().constFirst();
    const auto entry = readEntry(isThere(own) ? own : systemWideEntry());
    if (!entry || !isStarted(*entry, currentDesktops()))
        return false;
    if (!entry->tryExec.isEmpty() && QStandardPaths::findExecutable(entry->tryExec).isEmpty())
        return false;
    const QString started = QStandardPaths::findExecutable(entry->program);
    return !started.isEmpty()
        && QFileInfo(started).canonicalFilePath() == QFileInfo(program).canonicalFilePath();
}

/// The folder and those above it, for the user alone, as the desktop's rules want them.
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
    const QString file = autostartPlaces().constFirst();
    const QString folder = QFileInfo(file).path();
    if (!makeFolder(folder))
        return u"The folder \"%1\" cannot be made."_s.arg(folder);
    // Flushed first: what the disk refuses only during the commit, the commit overlooks.
    QSaveFile target(file);
    if (target.open(QIODevice::WriteOnly) && target.write(content) == content.size()
        && target.flush() && target.commit())
        return std::nullopt;
    return u"\"%1\" cannot be written: %2."_s.arg(file, target.errorString());
}

std::optional<QString> turnOn(const QString &program)
{
    if (!QFileInfo(program).isFile())
        return u"Corvane's own program file is no longer in its place. Start Corvane again."_s;
    // The rules for entries do not allow it, and some desktops take it for a variable.
    if (program.contains(u'='))
        return u"A program whose path has an equals sign cannot be started at login: \"%1\"."_s.arg(
            program);
    return writeEntry(autostartFile(program));
}

std::optional<QString> turnOff()
{
    if (!systemWideEntry().isEmpty())
        return writeEntry("[Desktop Entry]\nType=Application\nName=Corvane\nHidden=true\n");
    QFile own(autostartPlaces().constFirst());
    if (!isThere(own.fileName()) || own.remove())
        return std::nullopt;
    return u"\"%1\" cannot be removed: %2."_s.arg(own.fileName(), own.errorString());
}

} // namespace

LoginItem autostartItem(const QString &program)
{
    return {.isEnabled = [program] { return isOn(program); },
            .enable = [program] { return turnOn(program); },
            .disable = turnOff};
}

} // namespace corvane
