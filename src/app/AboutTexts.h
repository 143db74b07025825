#pragma once

#include "platform/HostSystem.h"
#include "updates/BundleVersion.h"

#include <QString>

namespace corvane {

/// Texts of the about panel.
struct AboutTexts {
    QString name = {};
    QString version = {};   ///< "0.1.0".
    QString build = {};     ///< "1".
    QString credits = {};   ///< Several lines, in the wording for the system.
    QString copyright = {}; ///< One line.

    /// A missing version is 0.1.0, a missing build 1.
    static AboutTexts current(const BundleVersion &bundle = bundleVersion(),
                              HostSystem system = hostSystem());
};

} // namespace corvane
