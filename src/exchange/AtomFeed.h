#pragma once

#include "exchange/Exports.h"

namespace quarry {

/// Writes a feed (RFC 4287) of the results of a query or of everything below a folder, newest first. Identities and
/// dates come from what is stored, never from the moment of writing. False when the sink refused something.
[[nodiscard]] bool writeAtomFeed(const QueryCorePtr& node, ExportedResults which, ByteSink& sink);

} // namespace quarry
