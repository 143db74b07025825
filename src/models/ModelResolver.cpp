#include "models/ModelResolver.h"

#include "arguments/ModelArgument.h"
#include "models/GGUFHeader.h"
#include "models/Quantisation.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

QString fileNameOf(const QString &path)
{
    return path.sliced(path.lastIndexOf(u'/') + 1);
}

/// Whether a file's header may name or describe its model.
bool mayHaveHeader(const QString &path)
{
    return path.endsWith(".gguf"_L1, Qt::CaseInsensitive) || saysNothing(fileNameOf(path));
}

std::uint64_t sumOf(const std::vector<MappedFile> &files)
{
    return std::accumulate(
        files.begin(), files.end(), std::uint64_t(0),
        [](std::uint64_t sum, const MappedFile &file) { return sum + file.bytes; });
}

/// Whether a file only comes on top of a model: a projector of pictures.
bool isProjector(const std::string &path)
{
    return path.find("mmproj", path.rfind('/') + 1) != std::string::npos;
}

} // namespace

ModelResolver::ModelResolver(ModelFiles files, FolderOf folderOf)
    : m_files(std::move(files)),
      m_folderOf(std::move(folderOf))
{
}

ModelFinding ModelResolver::resolve(const AIWorkload &workload, const IsOutOfTime &isOutOfTime)
{
    const auto pid = static_cast<std::int32_t>(workload.pid);
    ModelFinding finding{.model = workload.model, .details = workload.details};
    const std::vector<MappedFile> mapped = m_files.mapped(pid);
    if (!mapped.empty())
        finding.details.mappedBytes = sumOf(mapped);

    const bool isNamed = finding.model && !finding.model->isEmpty();
    if (finding.details.path) {
        nameByPath(finding, pid, *finding.details.path, isOutOfTime);
    } else if (!isNamed) {
        if (const auto path = usedFile(pid, mapped)) {
            finding.details.origin = ModelOrigin::usedFile;
            finding.details.path = path;
            finding.model = modelNameOf(*path);
            nameByPath(finding, pid, *path, isOutOfTime);
        }
    }
    if (!finding.details.quantisation && finding.model)
        finding.details.quantisation = quantisationInName(*finding.model);
    return finding;
}

void ModelResolver::nameByPath(ModelFinding &finding, std::int32_t pid, const QString &path,
                               const IsOutOfTime &isOutOfTime)
{
    const auto whole = absolute(pid, path);
    if (!whole || !mayHaveHeader(*whole))
        return;
    const std::string file = m_files.reachable(pid, whole->toStdString());
    nameByStore(finding, QString::fromStdString(file), isOutOfTime);
    const bool isTold = finding.model && !saysNothing(*finding.model);
    readHeader(finding, file, isTold);
}

/// By the manifests of the store that holds the file, if it is one of Ollama's.
void ModelResolver::nameByStore(ModelFinding &finding, const QString &path,
                                const IsOutOfTime &isOutOfTime)
{
    const auto blob = ollamaBlob(path);
    if (!blob)
        return;
    const auto answer =
        m_stores.namesOf(blob->store.toStdString(), blob->digest.toStdString(), isOutOfTime);
    finding.isComplete = answer.isComplete;
    if (answer.names.empty())
        return;
    finding.model = QString::fromStdString(answer.names.front());
    finding.details.origin = ModelOrigin::ollamaStore;
    finding.details.otherNames.clear();
    for (std::size_t i = 1; i < answer.names.size(); ++i)
        finding.details.otherNames.append(QString::fromStdString(answer.names[i]));
}

/// Quantisation and length of context in a GGUF file, and the name where none is known yet.
void ModelResolver::readHeader(ModelFinding &finding, const std::string &path, bool isTold)
{
    const BoundedFile file(path);
    const auto header =
        file ? parseGGUFHeader(file.head(GGUFHeader::bytesRead)) : std::optional<GGUFHeader>();
    if (!header)
        return;
    if (const auto name = isTold ? std::nullopt : nameOf(*header)) {
        finding.model = QString::fromStdString(*name);
        finding.details.origin = ModelOrigin::fileHeader;
    }
    if (header->fileType)
        finding.details.quantisation = quantisationOfFileType(*header->fileType);
    finding.details.trainedLength = header->contextLength;
}

/// Absent for a relative path whose folder is not known.
std::optional<QString> ModelResolver::absolute(std::int32_t pid, const QString &path) const
{
    if (path.startsWith(u'/'))
        return path;
    const auto folder = m_folderOf ? m_folderOf(pid) : std::nullopt;
    if (!folder)
        return std::nullopt;
    return QString::fromStdString(*folder) + u'/' + path;
}

/// The model file of which the process has most in its address space, else the first that it has
/// open.
std::optional<QString> ModelResolver::usedFile(std::int32_t pid,
                                               const std::vector<MappedFile> &mapped) const
{
    const auto largest = std::ranges::max_element(mapped, {}, &MappedFile::bytes);
    if (largest != mapped.end())
        return QString::fromStdString(largest->path);
    const auto opened = m_files.opened(pid);
    const auto first = std::ranges::find_if_not(opened, isProjector);
    if (first == opened.end())
        return std::nullopt;
    return QString::fromStdString(*first);
}

} // namespace corvane
