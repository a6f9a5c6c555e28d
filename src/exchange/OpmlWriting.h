#pragma once

#include "exchange/Exports.h"

namespace quarry {

/// Writes a query, or a folder with everything below it, as OPML 2.0; of the whole tree what lies in it. Attributes of
/// the product's own namespace hold the definitions whole. False when the sink refused something.
[[nodiscard]] bool writeOpml(const QueryCorePtr& node, ByteSink& sink);

} // namespace quarry
