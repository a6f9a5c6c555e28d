#pragma once

#include "model/QueryCore.h"

#include <QString>
#include <QStringList>

#include <functional>

namespace quarry {

/// One change that the user made to the tree, kept until it is in the file. It names nodes and results by their UUIDs
/// and states what is to be, not what is to be flipped: applied twice, or to a tree that another program wrote
/// meanwhile, it comes to the same. What it names and is not there any more is passed over. A plain value.
struct TreeEdit {
    /// May run on another thread, under the tree lock or not. Never throws.
    std::function<void(const QueryCorePtr& root)> apply;
    QStringList queries;    ///< The nodes whose results or definition change.
    bool structure = false; ///< Nodes come, go or move.
    bool large = false;     ///< Takes longer than a frame: made on another thread, and shown when it is done.
};

/// So many results make an edit a large one.
constexpr qint64 LargeEditResults = 3000;

} // namespace quarry
