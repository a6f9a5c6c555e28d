#pragma once

#include "apps/updater/RefreshProgress.h"

namespace quarry {

/// Every event as one line on standard output, at once.
[[nodiscard]] EventSink eventLines();

/// For a person, on standard error: faults, each service's first one as it happens and the number of them in the end;
/// with `showsQueries` also a line a query as each ends, and a summary.
[[nodiscard]] EventSink eventText(bool showsQueries);

} // namespace quarry
