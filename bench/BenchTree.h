#pragma once

#include "model/QueryCore.h"

namespace quarry::bench {

/// A query tree as years of use leave it: queries in folders, each with results of all thirteen keys, texts of the
/// lengths that result pages have, some of them not ASCII. The same for the same numbers.
[[nodiscard]] QueryCorePtr makeTree(int queries, int resultsPerQuery);

} // namespace quarry::bench
