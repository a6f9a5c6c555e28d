#include "engines/QueryUpdateMerge.h"

#include "model/TreeLock.h"

namespace quarry {

/// After so many merges in vain somebody edits faster than they are made: the next one keeps everybody out.
static constexpr int MostMergesBesideTheTree = 8;

MergeOutcome mergeIntoQuery(QueryCore& node, const QueryFields& asked, const ResultList& links, Date now,
                            qint64 numberOfNewLinks, const MergeHooks& hooks)
{
    for (int attempt = 0;; ++attempt) {
        std::optional<TreeLock> lock;
        if (attempt == MostMergesBesideTheTree)
            lock.emplace();
        const QueryCore::Snapshot snapshot = node.snapshot();
        const QueryFields& query = snapshot.fields;
        MergeOutcome outcome = compareWithKnownLinks(query, links, expiresPreviousResults(query),
                                                     {now, snapshot.sortType, numberOfNewLinks}, hooks);
        const Date date = asksForTheSame(asked, query) ? now : query._lastUpdate.value_or(Date::reference());
        if (node.replaceResultsIfUnchanged(snapshot.generation, outcome.results, date))
            return outcome;
    }
}

bool asksForTheSame(const QueryFields& a, const QueryFields& b)
{
    return a._query == b._query && a._isAdvancedQuery == b._isAdvancedQuery &&
           a._combinedQueryList == b._combinedQueryList && a._wordsRestriction == b._wordsRestriction &&
           a._websiteRestriction == b._websiteRestriction && a._urlRegularExpression == b._urlRegularExpression;
}

} // namespace quarry
