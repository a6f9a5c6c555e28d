#pragma once

#include "model/QueryCore.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace quarry {

/// The queries that starting an update of the node starts: itself, or those below enabled folders below it.
[[nodiscard]] QList<QueryCorePtr> queriesStartedBy(const QueryCorePtr& node);

/// The queries that a full refresh starts. At the top level a paused folder is gone through all the same.
[[nodiscard]] QList<QueryCorePtr> queriesOfFullRefresh(const QueryCorePtr& root);

/// What some names stand for.
struct RefreshTargets {
    /// Of each name, in order, the queries to start; a query that an earlier name started is left out.
    QList<QList<QueryCorePtr>> queries;
    QList<QueryCorePtr> paused; ///< Named, but switched off.
    QString error;              ///< A name that fits nothing, or several: lines for a person. Else empty.

    [[nodiscard]] static RefreshTargets named(const QueryCorePtr& root, const QStringList& names);
};

} // namespace quarry
