#pragma once

#include "exchange/ImportedNode.h"
#include "model/QueryCore.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace quarry {

/// Reads what can be imported: a qsexport, a database file, OPML. The content says which it is. Nothing in the bytes
/// is trusted: whatever they hold, the answer is nodes or a fault. `name` is what a folder without one is called.
[[nodiscard]] ImportedForest readImport(const QByteArray& bytes, const QString& name);

/// How putting imported nodes into a tree went.
struct Grafting {
    QString fault; ///< Why the tree was left as it is; empty when everything is in.
    qint64 queries = 0;
    qint64 folders = 0;
    qint64 results = 0; ///< The hidden ones too.
    /// Queries and folders that got another UUID, since theirs was taken or is none.
    qint64 renamed = 0;
    QStringList notes; ///< What a person should know about the queries that came in, in a line each.
};

/// Puts a copy of everything to the end of a folder of the tree, all or nothing. A UUID stays unless it is in the tree
/// already; the records of a node that gets another one get others too, since they are copies then.
[[nodiscard]] Grafting graft(const ImportedForest& forest, const QueryCorePtr& root, const QueryCorePtr& folder);

} // namespace quarry
