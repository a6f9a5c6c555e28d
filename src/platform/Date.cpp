#include "platform/Date.h"

#include <QDateTime>

#include <cmath>

namespace quarry {

QString Date::description() const
{
    const QDateTime local = QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(std::floor(unixSeconds() * 1000.0)));
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
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(std::floor(unixSeconds() * 1000.0)), Qt::UTC)
        .toString(Qt::ISODate);
}

} // namespace quarry
