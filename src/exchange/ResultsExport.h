#pragma once

#include "exchange/Exports.h"

namespace quarry {

/// One visible result with its query, and its number there in the order of rank.
struct ExportedResult {
    ResultRecord record;
    QueryCorePtr query;
    qsizetype number = 0;
    [[nodiscard]] bool isNew() const { return record.newSincePrevious().value_or(false); }
};

/// The results of a query, or of all queries below a folder: queries in the order of the tree, results in that of
/// their rank. What a list is filtered by at the moment does not count.
[[nodiscard]] QList<ExportedResult> resultsBelow(const QueryCorePtr& node, ExportedResults which);

/// False when the sink refused something.
[[nodiscard]] bool writeJsonResults(const QueryCorePtr& node, ExportedResults which, ByteSink& sink);
[[nodiscard]] bool writeCsvResults(const QueryCorePtr& node, ExportedResults which, ByteSink& sink);

} // namespace quarry
