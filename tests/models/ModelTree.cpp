#include "models/ModelTree.h"

#include <QDir>
#include <QFileInfo>

#include <unistd.h>

namespace corvane::test {

std::string ModelTree::manifest(char digit)
{
    return R"({"schemaVersion":2,"mediaType":"application/vnd.docker.distribution.manifest.v2+json",)"
           R"("config":{"mediaType":"application/vnd.docker.container.image.v1+json","digest":"sha256:)"
        + digest('f')
        + R"(","size":488},"layers":[{"mediaType":"application/vnd.ollama.image.model","digest":"sha256:)"
        + digest(digit)
        + R"(","size":5225374720},{"mediaType":"application/vnd.ollama.image.template","digest":"sha256:)"
        + digest('e') + R"(","size":1723}]})";
}

std::string ModelTree::list(const std::string &digits)
{
    std::string items;
    for (const char digit : digits)
        items += std::string(items.empty() ? "" : ",")
            + R"({"mediaType":"application/vnd.oci.image.manifest.v1+json","digest":"sha256:)"
            + digest(digit) + R"(","size":700})";
    return R"({"schemaVersion":2,"manifests":[)" + items + "]}";
}

void ModelTree::linkManifest(const std::string &name, const std::string &target) const
{
    const std::string place = store() + "/manifests-v2/" + name;
    QDir().mkpath(QFileInfo(QString::fromStdString(place)).path());
    if (symlink(target.c_str(), place.c_str()) != 0)
        qFatal("The made-up store could not be written.");
}

} // namespace corvane::test
