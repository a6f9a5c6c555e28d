#pragma once

#include "model/QueryCore.h"

#include <QStringList>

namespace quarry {

/// Addresses of results, to try an expression on: those of `first` (may be none), then some of every other query below
/// the root, each once. A few hundred at most, so that it takes no time on a large tree.
[[nodiscard]] QStringList knownAddresses(const QueryCorePtr& root, const QueryCorePtr& first);

} // namespace quarry
