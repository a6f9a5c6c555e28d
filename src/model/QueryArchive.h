#pragma once

#include "model/QueryCore.h"
#include "platform/FileStore.h"

#include <QByteArray>
#include <QString>

namespace quarry {

/// How deep folders may stand in one another in a file; deeper ones no person made.
inline constexpr int MaximumTreeDepth = 256;

/// A query tree read back from the bytes of a database file.
struct LoadedTree {
    QueryCorePtr root; ///< None when the bytes do not decode.
    QString reason;    ///< One line for a person, when they do not.
};

/// Reads the tree. Nothing in the bytes is trusted: whatever they hold, the answer is a tree or a reason. The records
/// keep the bytes alive, so they must not be changed in place later.
[[nodiscard]] LoadedTree loadTree(const QByteArray& bytes);

/// Writes the tree, with everything it was loaded with that this program does not know. Takes one consistent snapshot
/// under the tree lock and writes it without the lock. False when the sink refused something, and for a tree that
/// could not be read back, since it is too deep.
[[nodiscard]] bool saveTree(const QueryCorePtr& root, ByteSink& sink);

} // namespace quarry
