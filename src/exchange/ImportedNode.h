#pragma once

#include "model/QueryFields.h"

#include <optional>
#include <vector>

namespace quarry {

/// A node that was read from a file and stands in no tree yet: a value, so that it can be put into one more than once.
struct ImportedNode {
    QueryFields fields;
    std::optional<std::vector<ImportedNode>> childs; ///< None where a node has no list.
};

/// What the reading of one format gives.
struct ImportedForest {
    std::vector<ImportedNode> nodes;
    QString fault; ///< Why nothing can be imported, in one line for a person; empty when it can.
};

} // namespace quarry
