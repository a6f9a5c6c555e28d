#include "session/ResultListing.h"

#include "model/ResultComparator.h"
#include "model/ResultKeys.h"
#include "model/ResultSearch.h"

#include <algorithm>
#include <utility>

namespace quarry {

namespace {

bool isSet(const ResultListing::Cancelled* cancelled)
{
    return cancelled && cancelled->load(std::memory_order_relaxed);
}

ResultList resultsOf(const QueryCore& query, bool hidden)
{
    const QueryFields fields = query.snapshot().fields;
    return (hidden ? fields._hiddenResults : fields._currentResult).value_or(ResultList());
}

void collect(const QueryCorePtr& node, QList<QueryCorePtr>& queries)
{
    if (!node->isQueryFolder()) {
        queries.append(node);
        return;
    }
    const QList<QueryCorePtr> childs = node->childs().value_or(QList<QueryCorePtr>());
    for (const QueryCorePtr& child : childs)
        collect(child, queries);
}

} // namespace

ResultListing ResultListing::of(const QueryCorePtr& node, std::int32_t order, bool hidden, const Cancelled* cancelled)
{
    QList<QueryCorePtr> queries;
    if (node)
        collect(node, queries);
    ResultListing listing;
    ResultList records;
    std::vector<std::uint32_t> owners; // Of each record.
    for (const QueryCorePtr& query : queries) {
        if (isSet(cancelled))
            return {};
        records += resultsOf(*query, hidden);
        owners.resize(std::size_t(records.size()), std::uint32_t(listing._queries.size()));
        listing._queries.append(query->UUID());
    }
    const std::vector<std::uint32_t> places = sortedPlaces(records, order, cancelled);
    if (isSet(cancelled))
        return {};
    auto rows = std::make_shared<Rows>();
    rows->reserve(places.size());
    for (const std::uint32_t place : places)
        rows->push_back({std::as_const(records)[qsizetype(place)], owners[place]});
    listing._rows = std::move(rows);
    return listing;
}

ResultListing ResultListing::filtered(const QString& search, const Cancelled* cancelled) const
{
    if (search.isEmpty() || !_rows)
        return *this;
    constexpr std::size_t RowsBetweenLooks = 1024;
    const ResultSearch wanted(search);
    auto found = std::make_shared<Rows>();
    for (std::size_t i = 0; i < _rows->size(); ++i) {
        if (i % RowsBetweenLooks == 0 && isSet(cancelled))
            return {};
        if (wanted.matches((*_rows)[i].record))
            found->push_back((*_rows)[i]);
    }
    ResultListing listing;
    listing._queries = _queries;
    listing._rows = std::move(found);
    return listing;
}

std::ptrdiff_t ResultListing::placeOf(const QString& queryUuid, const QString& key) const
{
    const auto query = std::uint32_t(_queries.indexOf(queryUuid));
    if (!_rows)
        return -1;
    const auto found = std::find_if(_rows->begin(), _rows->end(), [&](const Row& row) {
        return row.query == query && ResultKeys::keyOf(row.record) == key;
    });
    return found == _rows->end() ? -1 : found - _rows->begin();
}

} // namespace quarry
