#pragma once

#include "model/QueryFields.h"

#include <QString>

#include <cstdint>
#include <functional>

namespace quarry {

/// What a merge goes by besides the query's own fields.
struct MergeSettings {
    Date now;
    /// The order in which the merged results stand; see compareResults.
    std::int32_t sortType = 3;
    /// "pref_numberOfNewLinks": at most so many links are added; none above 0: no limit.
    qint64 numberOfNewLinks = 0;
};

/// What a merge asks others. Empty ones answer no.
struct MergeHooks {
    /// Whether the shared blacklist accepts the record; asked only for a query that subscribes to it.
    std::function<bool(const ResultRecord& record)> isBlackListed;
    /// Whether a private filter of the query accepts the address text.
    std::function<bool(const FilterObject& filter, const QString& address)> testString;
};

struct MergeOutcome {
    ResultList results; ///< The query's visible results from now on.
    qint64 added = 0;
    qint64 blacklisted = 0;
    qint64 excluded = 0;
};

/// Merges links that an update brought, in their order, into a query's visible results: known, hidden and unwanted
/// links are left out, the others stamped and appended until enough were added; then everything is sorted.
///
/// With `expirePreviousResults`, unrated results found more than 90 days ago go first, and what stays is no longer
/// marked as new. A function of its arguments: the same links can be merged again into a query that was changed
/// meanwhile. Safe on any thread as far as the hooks are.
[[nodiscard]] MergeOutcome compareWithKnownLinks(const QueryFields& query, const ResultList& links,
                                                 bool expirePreviousResults, const MergeSettings& settings,
                                                 const MergeHooks& hooks = {});

/// Whether the merge may drop old results of that query: it has some.
[[nodiscard]] bool expiresPreviousResults(const QueryFields& query);

} // namespace quarry
