#pragma once

#include "model/QueryCore.h"

#include <QString>

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace quarry {

class QueryDatabaseEngine;

/// What one query's update brought, after filtering and before the merge.
struct BroughtLinks {
    QString queryUuid;
    ResultList links; ///< In the order of the merge.
    Date fetchedAt;   ///< Becomes the query's date of last update.
    /// The node that these links were merged into during the refresh. When the tree was not reloaded since, the
    /// links are in it already and must not be merged again: a second merge would take their mark of being new.
    std::weak_ptr<QueryCore> mergedInto;
};

/// Keeps what a refresh brings until it is in the file. The user may edit the database meanwhile: at a commit the
/// same links are merged into the tree that is in the file by then, so edits and refresh both survive. Queries that
/// were removed meanwhile take their links with them. Thread-safe; the engine must outlive the object.
class RefreshCommit final {
public:
    /// Merges the links into a node of the current tree, with expiry where the node has results, and sets its date.
    using Merge = std::function<void(const QueryCorePtr& node, const BroughtLinks& brought)>;

    RefreshCommit(QueryDatabaseEngine& database, Merge merge);

    /// Called by the update threads.
    void add(BroughtLinks brought);

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
    std::vector<BroughtLinks> _waiting;
};

} // namespace quarry
