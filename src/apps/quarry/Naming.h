#pragma once

#include "apps/quarry/Outcome.h"
#include "exchange/TreeWalk.h"

#include <QList>
#include <QString>

namespace quarry {

/// A node and what went wrong when there is none.
struct NamedNode {
    QueryCorePtr node;
    Outcome fault;
    [[nodiscard]] bool ok() const { return node != nullptr; }
};

/// Finds the query or folder that a person means: by its UUID, by the beginning of it (4 characters or more), or by
/// its title; when nothing fits exactly, by the title without regard to case. Several that fit are a fault that
/// lists them.
[[nodiscard]] NamedNode nodeNamed(const QueryCorePtr& root, const QString& name);
/// The same for folders.
[[nodiscard]] NamedNode folderNamed(const QueryCorePtr& root, const QString& name);
/// The folder to put a new node into: the root when none was named.
[[nodiscard]] NamedNode targetFolder(const QueryCorePtr& root, const std::optional<QString>& name);

/// All of them, in the order named, each once; or the first fault.
struct NamedNodes {
    QList<QueryCorePtr> nodes;
    Outcome fault;
    [[nodiscard]] bool ok() const { return fault.ok(); }
};
[[nodiscard]] NamedNodes nodesNamed(const QueryCorePtr& root, const QStringList& names);

/// A title for a person: what the node is called, or a stand-in where it has no name.
[[nodiscard]] QString shownTitle(const QueryCore& node);

/// "advanced query \"raised bed\" (3F2A91C0)": what was made or changed.
[[nodiscard]] QString described(const QueryCore& node);

/// The records that a person means, out of those listed: by number (1 is the first), by "link uuid key" or the
/// beginning of it (4 characters or more; a number that is in the list comes first), or by address.
struct NamedRecords {
    ResultList records;
    Outcome fault;
    [[nodiscard]] bool ok() const { return fault.ok(); }
};
[[nodiscard]] NamedRecords recordsNamed(const ResultList& listed, const QStringList& names);

} // namespace quarry
