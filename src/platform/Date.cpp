#include "platform/Date.h"

#include <QDateTime>

#include <algorithm>
#include <cmath>

namespace quarry {

/// Milliseconds since 1970. A file may hold any number as a date, none at all included: what no calendar shows
/// becomes the nearest date with a year of four digits.
static qint64 shownMilliseconds(Date date)
{
    constexpr double Earliest = -62135596800.0; // 0001-01-01
    constexpr double Latest = 253402300799.0;   // 9999-12-31
    const double seconds = date.unixSeconds();
    const double shown = std::isnan(seconds) ? 0.0 : std::min(std::max(seconds, Earliest), Latest);
    return static_cast<qint64>(std::floor(shown * 1000.0));
}

QString Date::description() const
{
    const QDateTime local = QDateTime::fromMSecsSinceEpoch(shownMilliseconds(*this));
    const int offset = local.offsetFromUtc();
    const int minutes = std::abs(offset) / 60;
    return QStringLiteral("%1 %2%3%4")
        .arg(local.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")),
             offset < 0 ? QStringLiteral("-") : QStringLiteral("+"))
        .arg(minutes / 60, 2, 10, QLatin1Char('0'))
        .arg(minutes % 60, 2, 10, QLatin1Char('0'));
}

QString Date::isoText() const
{
    return QDateTime::fromMSecsSinceEpoch(shownMilliseconds(*this), Qt::UTC).toString(Qt::ISODate);
}

} // namespace quarry
