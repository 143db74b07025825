#pragma once

#include <QString>

#include <optional>

namespace corvane {

/// The version in the program's bundle. A value that is missing or not text is absent.
struct BundleVersion {
    std::optional<QString> version = {}; ///< "0.1.0".
    std::optional<QString> build = {};   ///< "1".
};

/// This program's: from the bundle's keys on a Mac, elsewhere from the build.
BundleVersion bundleVersion();

} // namespace corvane
