#pragma once

#include <limits>

namespace corvane {

/// Whether a quantity counts as known: it was read within the last ten seconds. A file that fails
/// now and then must not make its quantity come and go.
class KnownLately {
public:
    /// To be called at each reading, with whether it had the quantity.
    bool update(bool isRead, double now)
    {
        if (isRead)
            m_last = now;
        return now - m_last <= seconds;
    }

    static constexpr double seconds = 10;

private:
    double m_last = -std::numeric_limits<double>::infinity();
};

} // namespace corvane
