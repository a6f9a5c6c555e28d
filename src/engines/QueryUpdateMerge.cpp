#include "engines/QueryUpdateMerge.h"

#include "model/TreeLock.h"

namespace quarry {

/// After so many merges in vain somebody edits faster than they are made: the next one keeps everybody out.
static constexpr int MostMergesBesideTheTree = 8;

SearchDefinition SearchDefinition::of(const QueryFields& query)
{
    return {query._query,
            query._isAdvancedQuery,
            query._combinedQueryList,
            query._wordsRestriction,
            query._websiteRestriction,
            query._urlRegularExpression};
}

MergeOutcome mergeIntoQuery(QueryCore& node, const SearchDefinition& asked, const ResultList& links, Date now,
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
        const Date date = asked == SearchDefinition::of(query) ? now : query._lastUpdate.value_or(Date::reference());
        if (node.replaceResultsIfUnchanged(snapshot.generation, outcome.results, date))
            return outcome;
    }
}

} // namespace quarry
