#include "tray/TrayAdvice.h"

#include "platform/KernelText.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <optional>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// The distributions, by the ID in their os-release, whose package of the extension has the same
/// name. Their derivatives list them under ID_LIKE.
constexpr std::array<std::string_view, 4> knownDistributions{"debian", "ubuntu", "fedora", "arch"};
constexpr auto package = "gnome-shell-extension-appindicator"_L1;

std::string_view withoutQuotes(std::string_view value)
{
    const bool isQuoted = value.size() >= 2 && (value.front() == '"' || value.front() == '\'')
        && value.front() == value.back();
    return isQuoted ? value.substr(1, value.size() - 2) : value;
}

/// The value of a line such as ID_LIKE="rhel fedora"; empty for another key.
std::string_view valueOf(std::string_view line, std::string_view key)
{
    line = trimmed(line);
    if (!line.starts_with(key) || line.substr(key.size(), 1) != "=")
        return {};
    return withoutQuotes(line.substr(key.size() + 1));
}

bool namesKnownDistribution(std::string_view words)
{
    while (const auto word = takeWord(words)) {
        if (std::ranges::find(knownDistributions, *word) != knownDistributions.end())
            return true;
    }
    return false;
}

bool hasPackage(std::string_view osRelease)
{
    while (const auto line = takeLine(osRelease)) {
        if (namesKnownDistribution(valueOf(*line, "ID"))
            || namesKnownDistribution(valueOf(*line, "ID_LIKE")))
            return true;
    }
    return false;
}

/// Empty if it cannot be read.
QByteArray contentsOf(const QString &path)
{
    constexpr qint64 most = 65536;
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QFile::ReadOnly))
        return {};
    return file.read(most);
}

} // namespace

QString trayAdvice(const QStringList &desktops, std::string_view osRelease)
{
    if (!desktops.contains("GNOME"_L1, Qt::CaseInsensitive))
        return u"This desktop shows no tray items. Add a tray to its panel to see the numbers there."_s;
    if (!hasPackage(osRelease))
        return u"To see the numbers in GNOME’s bar, install its AppIndicator extension and turn it on."_s;
    return u"To see the numbers in GNOME’s bar, install %1 and turn the extension on."_s.arg(
        package);
}

QString trayAdviceForSession(const QString &root)
{
    QByteArray osRelease = contentsOf(root + u"etc/os-release"_s);
    if (osRelease.isEmpty())
        osRelease = contentsOf(root + u"usr/lib/os-release"_s);
    const QString desktops = qEnvironmentVariable("XDG_CURRENT_DESKTOP");
    return trayAdvice(desktops.split(u':', Qt::SkipEmptyParts),
                      std::string_view(osRelease.constData(), osRelease.size()));
}

} // namespace corvane
