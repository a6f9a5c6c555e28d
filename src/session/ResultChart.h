#pragma once

#include "model/QueryCore.h"
#include "platform/Date.h"

#include <QDate>
#include <QList>
#include <QString>
#include <QTimeZone>

#include <atomic>

namespace quarry {

/// How many results each of the latest days brought, and each service: of a query, or of everything below a folder.
/// Hidden results count: they were found all the same. A plain value; counting a large folder belongs on another
/// thread.
struct ResultChart {
    static constexpr int DayCount = 30;

    struct Day {
        QDate date;
        qint64 results = 0;
    };
    struct Share {
        QString engineId; ///< As in result records; empty for results without one.
        qint64 results = 0;
    };
    /// Set from another thread when nobody waits for the answer any more; what comes back then is empty.
    using Cancelled = std::atomic<bool>;

    QList<Day> days;       ///< DayCount of them by the calendar of that time zone, oldest first, the day of `now` last.
    QList<Share> services; ///< All results there are, most first; none without any.

    [[nodiscard]] static ResultChart of(const QueryCorePtr& node, Date now, const QTimeZone& zone,
                                        const Cancelled* cancelled = nullptr);

    /// Of all the days together.
    [[nodiscard]] qint64 resultsOfDays() const;
    [[nodiscard]] qint64 resultsOfServices() const;
    /// The most that one day brought.
    [[nodiscard]] qint64 most() const;
};

} // namespace quarry
