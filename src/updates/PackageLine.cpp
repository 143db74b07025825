#include "updates/PackageLine.h"

#include <algorithm>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr qsizetype longestWord = 128;

/// Whether a name or version has only characters that package managers use, so that it is safe to
/// show.
bool isPlainWord(QStringView word)
{
    const auto isPlain = [](QChar letter) {
        return letter.unicode() < 128
            && (letter.isLetterOrNumber() || ".+-_~^:@"_L1.contains(letter));
    };
    return !word.isEmpty() && word.size() <= longestWord
        && std::all_of(word.cbegin(), word.cend(), isPlain);
}

bool isOtherVersion(const PackageLine &line, const QString &installed)
{
    return line.info == PackageInfo::available && line.version != installed;
}

} // namespace

std::optional<PackageLine> packageLine(unsigned int info, const QString &id)
{
    const auto parts = QStringView(id).split(u';');
    if (parts.size() != 4 || !isPlainWord(parts[0]) || !isPlainWord(parts[1]))
        return std::nullopt;
    return PackageLine{.info = static_cast<PackageInfo>(info & 0xFFFF),
                       .name = parts[0].toString(),
                       .version = parts[1].toString()};
}

std::optional<QString> installedVersion(const QList<PackageLine> &resolved)
{
    for (const PackageLine &line : resolved) {
        if (line.info == PackageInfo::installed)
            return line.version;
    }
    return std::nullopt;
}

bool hasOtherVersion(const QList<PackageLine> &resolved)
{
    const auto installed = installedVersion(resolved);
    return installed
        && std::any_of(resolved.cbegin(), resolved.cend(),
                       [&](const PackageLine &line) { return isOtherVersion(line, *installed); });
}

std::optional<QString> updateVersion(const QList<PackageLine> &resolved,
                                     const QList<PackageLine> &updates)
{
    const auto installed = installedVersion(resolved);
    if (!installed)
        return std::nullopt;
    for (const PackageLine &update : updates) {
        const auto isThisOne = [&](const PackageLine &line) {
            return isOtherVersion(line, *installed) && line.name == update.name
                && line.version == update.version;
        };
        // A package that is held back is listed too, but the updater does not install it.
        if (update.info != PackageInfo::blocked
            && std::any_of(resolved.cbegin(), resolved.cend(), isThisOne))
            return update.version;
    }
    return std::nullopt;
}

} // namespace corvane
