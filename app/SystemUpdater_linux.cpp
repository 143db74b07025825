#include "app/SystemUpdater.h"

#include "app/PackageUpdater.h"

#include <QCoreApplication>

namespace corvane {

std::unique_ptr<SystemUpdater> makeSystemUpdater()
{
    return std::make_unique<PackageUpdater>(
        PackageUpdaterSources{.program = QCoreApplication::applicationFilePath()});
}

} // namespace corvane
