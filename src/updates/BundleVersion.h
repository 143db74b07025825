#pragma once

#include <QString>

#include <optional>

namespace corvane {

/// What the program's bundle says of its version. A key that is not there or not text is absent.
struct BundleVersion {
    std::optional<QString> version = {}; ///< "0.1.0".
    std::optional<QString> build = {};   ///< "1".
};

/// This program's: the bundle's keys on a Mac, elsewhere what it was built as.
BundleVersion bundleVersion();

} // namespace corvane
