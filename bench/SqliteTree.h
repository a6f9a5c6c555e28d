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

/// What the questions below are answered from.
[[nodiscard]] bool indexSqlite(const QString& path);
/// Opens the file and counts the results of each query, the unread and the new ones. Answers how many queries have any.
[[nodiscard]] int countInSqlite(const QString& path);
/// Opens the file and reads the results of a query, newest first; `query` is its number in the order of the tree,
/// folders included. Answers how many there are.
[[nodiscard]] int listFromSqlite(const QString& path, int query);

} // namespace quarry::bench
