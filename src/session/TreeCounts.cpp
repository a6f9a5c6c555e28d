#include "session/TreeCounts.h"

#include <QSet>

namespace quarry {

namespace {

TreeCounts::Counts countQuery(const QueryCore& query)
{
    // The stored lists: the interactive search does not change what a badge says.
    const QueryFields fields = query.snapshot().fields;
    TreeCounts::Counts counts;
    counts.hidden = fields._hiddenResults ? fields._hiddenResults->size() : 0;
    if (!fields._currentResult)
        return counts;
    counts.results = fields._currentResult->size();
    for (const ResultRecord& record : *fields._currentResult) {
        counts.unread += record.isRead() ? 0 : 1;
        counts.fresh += record.newSincePrevious().value_or(false) ? 1 : 0;
    }
    return counts;
}

} // namespace

TreeCounts::Counts& TreeCounts::Counts::operator+=(const Counts& other)
{
    unread += other.unread;
    results += other.results;
    hidden += other.hidden;
    fresh += other.fresh;
    return *this;
}

TreeCounts::TreeCounts(const QueryCorePtr& root)
{
    if (root)
        addUp(root);
}

TreeCounts::Counts TreeCounts::addUp(const QueryCorePtr& node)
{
    const QString uuid = node->UUID();
    Counts sum;
    if (node->isQueryFolder()) {
        const QList<QueryCorePtr> childs = node->childs().value_or(QList<QueryCorePtr>());
        for (const QueryCorePtr& child : childs)
            sum += addUp(child);
    } else {
        const auto known = _ofQueries.constFind(uuid);
        sum = known != _ofQueries.constEnd() ? *known : countQuery(*node);
        _ofQueries.insert(uuid, sum);
    }
    _counts.insert(uuid, sum);
    return sum;
}

void TreeCounts::update(const QueryCorePtr& root, const QStringList& queries)
{
    for (const QString& uuid : queries)
        _ofQueries.remove(uuid);
    // A thousand queries add up in microseconds; only those that changed are counted.
    addUp(root);
}

void TreeCounts::updateStructure(const QueryCorePtr& root, const QStringList& queries)
{
    _counts.clear();
    update(root, queries);
}

} // namespace quarry
