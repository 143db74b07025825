#include "updates/BundleVersion.h"

namespace corvane {

BundleVersion bundleVersion()
{
    return {QStringLiteral(CORVANE_VERSION), QStringLiteral(CORVANE_BUILD)};
}

} // namespace corvane
