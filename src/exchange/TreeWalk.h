#pragma once

#include "model/QueryCore.h"

#include <functional>

namespace quarry {

/// The node and everything below it, folders before their children.
void walk(const QueryCorePtr& node, const std::function<void(const QueryCorePtr& node, int depth)>& visit,
          int depth = 0);
/// The queries below a folder, in order; a query itself.
[[nodiscard]] QList<QueryCorePtr> queriesBelow(const QueryCorePtr& node);

/// What lists count about a node: the sums over everything below it for a folder.
struct NodeCounts {
    qint64 unread = 0;
    qint64 results = 0;
    qint64 hidden = 0;
};
[[nodiscard]] NodeCounts countsOf(const QueryCorePtr& node);

} // namespace quarry
