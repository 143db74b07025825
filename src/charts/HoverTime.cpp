#include "charts/HoverTime.h"

#include "charts/ChartTime.h"

#include <QDateTime>

namespace corvane::HoverTime {

using namespace Qt::StringLiterals;

QString string(double date)
{
    return chartTime(date).toString(u"HH:mm:ss"_s);
}

QString minute(double date)
{
    return chartTime(date).toString(u"ddd HH:mm"_s);
}

} // namespace corvane::HoverTime
