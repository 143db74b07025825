#pragma once

#include "platform/HostSystem.h"
#include "updates/BundleVersion.h"

#include <QString>

namespace corvane {

/// What the about panel says.
struct AboutTexts {
    QString name = {};
    QString version = {};   ///< "0.1.0".
    QString build = {};     ///< "1".
    QString credits = {};   ///< Lines, as they are true on the system.
    QString copyright = {}; ///< One line.

    /// A bundle without versions is 0.1.0, build 1.
    static AboutTexts current(const BundleVersion &bundle = bundleVersion(),
                              HostSystem system = hostSystem());
};

} // namespace corvane
