#pragma once

#include "model/QueryCore.h"

#include <QList>
#include <QString>

namespace quarry {

/// One line of queriesWithNewResults.
struct QuerySummary {
    qint64 nbNewItems = 0; ///< "nbNewItemsKey"
    QString title;         ///< "title Result Key"
    QString uuid;
};

/// Whether one of the nodes, the top level of a tree, says that something in it is unread; a folder answers for what
/// stands below it.
[[nodiscard]] bool hasUnreadResults(const QList<QueryCorePtr>& topLevel);

/// A line for each query below the node, in the tree's order, also where nothing is new.
[[nodiscard]] QList<QuerySummary> summariesBelow(const QueryCorePtr& node);

} // namespace quarry
