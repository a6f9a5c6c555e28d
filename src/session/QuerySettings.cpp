#include "session/QuerySettings.h"

#include <algorithm>
#include <tuple>

namespace quarry {

namespace {

bool isSame(const FilterObject& a, const FilterObject& b)
{
    return a == b || (a && b && *a == *b);
}

} // namespace

QuerySettings QuerySettings::of(const QueryCore& query)
{
    const QueryFields fields = query.snapshot().fields;
    return {fields._isSuscribedToBlacklist, fields._computeCheckSumOfLinks, fields._highlightState,
            fields._highlightString.value_or(QString()), fields._urlFilters.value_or(QList<FilterObject>())};
}

bool QuerySettings::operator==(const QuerySettings& other) const
{
    const auto plain = [](const QuerySettings& each) {
        return std::tie(each.checksBlacklist, each.keepsDigests, each.highlights, each.highlightWords);
    };
    return plain(*this) == plain(other) && areSameFilters(filters, other.filters);
}

void QuerySettings::applyTo(QueryCore& query) const
{
    query.setCheckBlacklist(checksBlacklist);
    query.setComputeChecksum(keepsDigests);
    query.setMustHighlight(highlights);
    query.setHighlight(highlightWords);
    const QList<FilterObject> now = query.filters().value_or(QList<FilterObject>());
    if (areSameFilters(now, filters))
        return;
    for (const FilterObject& filter : now)
        query.removeFilter(filter);
    for (const FilterObject& filter : filters)
        query.addFilter(filter);
}

bool areSameFilters(const QList<FilterObject>& a, const QList<FilterObject>& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), isSame);
}

} // namespace quarry
