#pragma once

#include <QString>

#include <optional>

namespace corvane {

/// Result of a check for updates.
struct UpdateReport {
    enum class Outcome {
        noService,   ///< The system has no package service.
        notAPackage, ///< This program is not an installed package.
        failed,      ///< The service gave no answer, or an error.
        unverified,  ///< A signature of the package lists was wrong.
        upToDate,
        available,
    };

    Outcome outcome = Outcome::failed;
    QString version = {};   ///< The available update's; else empty.
    bool isCurrent = false; ///< Whether the package lists were refreshed for this check.
    std::optional<unsigned int> listAge = {}; ///< Seconds since the last refresh; absent: unknown.
};

/// The report as one sentence for the user.
QString updateFinding(const UpdateReport &report);

} // namespace corvane
