#pragma once

#include "engines/QueryUpdateParts.h"

#include <QString>

#include <functional>
#include <mutex>
#include <vector>

namespace quarry {

class QueryDatabaseEngine;

/// Keeps what a refresh brings until it is in the file. The user may edit the database meanwhile: at a commit the
/// same links are merged into the tree that is in the file by then, so edits and refresh both survive. Where the tree
/// was not read again since, the nodes have their links already: a second merge would take their mark of being new.
/// Queries that were removed meanwhile take their links with them. Thread-safe; the engine must outlive the object.
class RefreshCommit final {
public:
    /// Merges what was brought into a node of the current tree, its date included (mergeIntoQuery).
    using Merge = std::function<void(QueryCore& node, const BroughtUpdate& brought)>;

    RefreshCommit(QueryDatabaseEngine& database, Merge merge);

    /// Called by the update threads: the journal of their parts.
    void add(const BroughtUpdate& brought);

    /// Lock, reload if the file changed, merge what is missing there, save, let go. Kept until a save succeeded, so
    /// a later commit tries again. Returns one line for a person on failure, an empty text otherwise.
    [[nodiscard]] QString commit();

    /// Nothing waits to be saved.
    [[nodiscard]] bool isEmpty() const;

private:
    QueryDatabaseEngine& _database;
    Merge _merge;
    std::mutex _committing; ///< One commit at a time.
    mutable std::mutex _mutex;
    std::vector<BroughtUpdate> _waiting;
};

} // namespace quarry
