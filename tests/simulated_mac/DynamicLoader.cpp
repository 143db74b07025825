#include "simulated_mac/ReportingFunctions.h"
#include "simulated_mac/SimulatedMac.h"

#include <dlfcn.h>

#include <string_view>

using namespace corvane::simulated;

namespace {

constexpr std::string_view frameworkPath =
    "/System/Library/PrivateFrameworks/IOReport.framework/IOReport";
constexpr std::string_view libraryPath = "/usr/lib/libIOReport.dylib";

bool exists(std::string_view path)
{
    return (path == frameworkPath && mac().machine.hasReportingFramework)
        || (path == libraryPath && mac().machine.hasReportingLibrary);
}

} // namespace

void *dlopen(const char *path, int mode)
{
    mac().openedLibraries.push_back({path, mode});
    if (faults().ask(Call::dlopen) || !exists(path))
        return nullptr;
    mac().reportingIsLoaded = true;
    return &mac();
}

void *dlsym(void *handle, const char *symbol)
{
    if (handle != RTLD_DEFAULT && handle != &mac())
        throw Misuse("a library handle that dlopen did not return");
    if (faults().ask(Call::dlsym) || !mac().reportingIsLoaded
        || symbol == mac().machine.missingSymbol)
        return nullptr;
    return reportingFunction(symbol);
}
