#pragma once

#include "blacklist/BlacklistStore.h"
#include "blacklist/PrivateFilters.h"
#include "engines/ResultMerge.h"

namespace quarry {

/// What a merge asks about blacklists: the shared list as it is saved by then, and the private filters of the query.
/// The hooks work on any thread; all three must outlive them.
[[nodiscard]] MergeHooks blacklistHooks(BlacklistStore& shared, PrivateFilters& own, Logger& log);

} // namespace quarry
