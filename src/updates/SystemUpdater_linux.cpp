#include "updates/SystemUpdater.h"

#include "updates/PackageUpdater_linux.h"

#include <QCoreApplication>

namespace corvane {

std::unique_ptr<SystemUpdater> makeSystemUpdater()
{
    return std::make_unique<PackageUpdater>(
        PackageUpdaterSources{.program = QCoreApplication::applicationFilePath()});
}

} // namespace corvane
