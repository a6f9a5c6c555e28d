#pragma once

#include "model/QueryCore.h"

#include <QString>

namespace quarry::bench {

// The same tree in an SQLite database, to measure against: a row a record, a column a key, prepared statements, one
// transaction, SQLite's own defaults (full synchronisation, rollback journal).

/// Writes a new file. False when SQLite refuses something.
[[nodiscard]] bool saveToSqlite(const QueryCorePtr& root, const QString& path);

/// Every record of the file, in order, as the values the product works with.
[[nodiscard]] ResultList readFromSqlite(const QString& path);

} // namespace quarry::bench
