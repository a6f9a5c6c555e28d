#pragma once

#include "engines/ResultMerge.h"
#include "model/QueryCore.h"

namespace quarry {

/// Merges what an update brought into a node, its results and its date of last update. Prepared beside the tree and
/// swapped in; done again when somebody changed the node meanwhile, so no mark or edit is lost.
///
/// `asked` is the query as it was when the services were asked. When its search was edited since, the links are still
/// taken, but the date stays: the edited search is yet to be asked.
MergeOutcome mergeIntoQuery(QueryCore& node, const QueryFields& asked, const ResultList& links, Date now,
                            qint64 numberOfNewLinks, const MergeHooks& hooks);

/// Whether two versions of a query ask the services for the same.
[[nodiscard]] bool asksForTheSame(const QueryFields& a, const QueryFields& b);

} // namespace quarry
