#include "session/ResultChart.h"

#include <QDateTime>
#include <QMap>

#include <algorithm>
#include <array>

namespace quarry {

namespace {

/// The days and when each begins: a day of the calendar is not always 24 hours long, nor begins at midnight.
class Calendar final {
public:
    Calendar(Date now, const QTimeZone& zone)
    {
        const QDate today = QDateTime::fromMSecsSinceEpoch(qint64(now.unixSeconds() * 1000.0), zone).date();
        for (std::size_t i = 0; i < _begins.size(); ++i) {
            const QDate day = today.addDays(qint64(i) - (ResultChart::DayCount - 1));
            _begins[i] = double(day.startOfDay(zone).toMSecsSinceEpoch()) / 1000.0;
            if (i < ResultChart::DayCount)
                days.append({day, 0});
        }
    }

    void count(Date found)
    {
        const double time = found.unixSeconds();
        if (time < _begins.front() || time >= _begins.back())
            return;
        const auto* const after = std::upper_bound(_begins.begin(), _begins.end(), time);
        ++days[after - _begins.begin() - 1].results;
    }

    QList<ResultChart::Day> days;

private:
    std::array<double, ResultChart::DayCount + 1> _begins; ///< In seconds since 1970; the last one is tomorrow's.
};

class Counter final {
public:
    Counter(Calendar& calendar, const ResultChart::Cancelled* cancelled) : _calendar(calendar), _cancelled(cancelled) {}

    [[nodiscard]] bool isCancelled() const { return _cancelled && _cancelled->load(std::memory_order_relaxed); }

    void addNode(const QueryCorePtr& node)
    {
        if (isCancelled())
            return;
        const QueryCore::Snapshot state = node->snapshot();
        add(state.fields._currentResult);
        add(state.fields._hiddenResults);
        const QList<QueryCorePtr> childs = state.childs.value_or(QList<QueryCorePtr>());
        for (const QueryCorePtr& child : childs)
            addNode(child);
    }

    [[nodiscard]] QList<ResultChart::Share> shares() const
    {
        QList<ResultChart::Share> shares;
        for (auto service = _services.begin(); service != _services.end(); ++service)
            shares.append({service.key(), service.value()});
        std::stable_sort(shares.begin(), shares.end(), [](const ResultChart::Share& a, const ResultChart::Share& b) {
            return a.results > b.results;
        });
        return shares;
    }

private:
    void add(const std::optional<ResultList>& records)
    {
        if (!records)
            return;
        for (const ResultRecord& record : *records) {
            ++_services[record.engineId().value_or(QString())];
            if (const std::optional<Date> found = record.dateOfFind())
                _calendar.count(*found);
        }
    }

    Calendar& _calendar;
    const ResultChart::Cancelled* _cancelled;
    QMap<QString, qint64> _services;
};

} // namespace

ResultChart ResultChart::of(const QueryCorePtr& node, Date now, const QTimeZone& zone, const Cancelled* cancelled)
{
    Calendar calendar(now, zone);
    Counter counter(calendar, cancelled);
    if (node)
        counter.addNode(node);
    if (counter.isCancelled())
        return {};
    return {calendar.days, counter.shares()};
}

qint64 ResultChart::resultsOfDays() const
{
    qint64 sum = 0;
    for (const Day& day : days)
        sum += day.results;
    return sum;
}

qint64 ResultChart::resultsOfServices() const
{
    qint64 sum = 0;
    for (const Share& share : services)
        sum += share.results;
    return sum;
}

qint64 ResultChart::most() const
{
    qint64 most = 0;
    for (const Day& day : days)
        most = std::max(most, day.results);
    return most;
}

} // namespace quarry
