#include "updates/UpdateSchedule.h"

namespace corvane {

double secondsUntilUpdateCheck(double now, std::optional<double> last)
{
    if (!last || !(*last <= now) || now - *last >= updateCheckInterval)
        return 0;
    return updateCheckInterval - (now - *last);
}

} // namespace corvane
