#pragma once

#include "engines/ResultMerge.h"
#include "model/QueryCore.h"

namespace quarry {

/// What a query asks the services for.
struct SearchDefinition {
    std::optional<QString> query;
    bool isAdvanced = false;
    std::optional<QStringList> combinedQueries;
    std::optional<qint64> wordsRestriction;
    std::optional<QString> websiteRestriction;
    std::optional<QString> urlRegularExpression;

    [[nodiscard]] static SearchDefinition of(const QueryFields& query);
    friend bool operator==(const SearchDefinition&, const SearchDefinition&) = default;
};

/// Merges what an update brought into a node, its results and its date of last update. Prepared beside the tree and
/// swapped in; done again when somebody changed the node meanwhile, so no mark or edit is lost.
///
/// `asked` is what the services were asked for. When the search was edited since, the links are still taken, but the
/// date stays: the edited search is yet to be asked.
MergeOutcome mergeIntoQuery(QueryCore& node, const SearchDefinition& asked, const ResultList& links, Date now,
                            qint64 numberOfNewLinks, const MergeHooks& hooks);

} // namespace quarry
