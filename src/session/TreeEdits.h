#pragma once

#include "model/ResultKeys.h"
#include "session/TreeEdit.h"

#include <QHash>
#include <QString>

#include <optional>

namespace quarry {

/// Results of several queries, by the UUIDs of their queries.
using ResultSelection = QHash<QString, ResultKeys>;

/// The changes that a person makes, each as an edit. Undoing one is another edit: the opposite one.
namespace edits {

/// A change, and what takes it back. What the one takes out of a tree it hands to the other as it was at that moment:
/// changes in between, or a file that was read again, do not bring an old copy back. Each may be made again and again.
struct Reversible {
    TreeEdit change;
    TreeEdit opposite;

    [[nodiscard]] Reversible reversed() const { return {opposite, change}; }
};

// --- Results ----------------------------------------------------------------------------------------------------
[[nodiscard]] TreeEdit setRead(bool read, const ResultSelection& results);
/// Marks all results of these queries as read. What was unread is found out where the change is first made, in the tree
/// as it is by then, and no more than that is marked later or elsewhere. `results` is about how many that are.
[[nodiscard]] Reversible markAllRead(const QStringList& queries, qint64 results);
[[nodiscard]] TreeEdit setHidden(bool hidden, const ResultSelection& results);
[[nodiscard]] TreeEdit setRating(qint64 rating, const ResultSelection& results);
/// Drops the results of hosts from a query, now and in later updates. The opposite lets the hosts in again and puts
/// back what was dropped. `results` is about how many the query has.
[[nodiscard]] Reversible exclusion(const QString& queryUuid, const QStringList& hosts, qint64 results);

// --- Nodes ------------------------------------------------------------------------------------------------------
/// Puts a node that is in no tree into a folder (an empty UUID is the top), at that place (past the end: last). The
/// opposite takes it out with everything below it; its page caches stay until they are swept.
[[nodiscard]] Reversible insertion(const QueryCorePtr& node, const QString& folderUuid, qsizetype index);
/// Takes a node out. The opposite puts it back there with its UUID, its children and its results.
[[nodiscard]] Reversible removal(const QueryCorePtr& root, const QueryCorePtr& node);
/// Ignored when the folder is the node itself or stands below it. `index` counts the folder's children without the
/// node.
[[nodiscard]] TreeEdit move(const QString& uuid, const QString& folderUuid, qsizetype index);
[[nodiscard]] TreeEdit rename(const QString& uuid, const std::optional<QString>& title);
/// Any other change of nodes, which must state what is to be, not what is to be flipped.
[[nodiscard]] TreeEdit change(const QStringList& uuids, const std::function<void(QueryCore& node)>& how);

/// Several changes as one, in that order.
[[nodiscard]] TreeEdit together(const QList<TreeEdit>& changes);
[[nodiscard]] Reversible together(const QList<Reversible>& changes);

/// The nodes of these UUIDs that are there, without the top folder and those that stand below another one of them.
[[nodiscard]] QList<QueryCorePtr> topmost(const QueryCorePtr& root, const QStringList& uuids);

/// Where a node stands: what insert() and move() need to bring it back there.
struct Place {
    QString folderUuid; ///< Empty for the top folder.
    qsizetype index = 0;
};
[[nodiscard]] Place placeOf(const QueryCorePtr& root, const QueryCorePtr& node);

} // namespace edits

} // namespace quarry
