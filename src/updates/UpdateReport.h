#pragma once

#include <QString>

#include <optional>

namespace corvane {

/// What a check for updates came to.
struct UpdateReport {
    enum class Outcome {
        noService,   ///< Nothing here answers for packages.
        notAPackage, ///< Updates come another way.
        failed,      ///< No answer, or an error.
        unverified,  ///< A signature was wrong.
        upToDate,
        available,
    };

    Outcome outcome = Outcome::failed;
    QString version = {};   ///< Of the update that is available.
    bool isCurrent = false; ///< Whether the package lists were brought up to date for it.
    std::optional<unsigned int> listAge = {}; ///< Seconds, of lists that were not; absent: unknown.
};

/// The report as one sentence for the user.
QString updateFinding(const UpdateReport &report);

} // namespace corvane
