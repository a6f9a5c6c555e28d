#pragma once

#include "model/QueryCore.h"

#include <QJsonObject>

namespace quarry {

// The shapes that docs/quarry-json.md promises.

/// A node with its counts; a folder with its children.
[[nodiscard]] QJsonObject jsonOfNode(const QueryCorePtr& node);
/// A node with its definition as well, without children.
[[nodiscard]] QJsonObject jsonOfDefinition(const QueryCorePtr& node);
/// A record; `number` 0 when it has none.
[[nodiscard]] QJsonObject jsonOfRecord(const ResultRecord& record, const QueryCorePtr& query, qsizetype number);

/// What lists count about a node: the sums over everything below it for a folder.
struct NodeCounts {
    qint64 unread = 0;
    qint64 results = 0;
    qint64 hidden = 0;
};
[[nodiscard]] NodeCounts countsOf(const QueryCorePtr& node);

/// "plain", "advanced", "combined", "folder"
[[nodiscard]] QString kindName(QueryKind kind);
/// "none", "all", "phrase", "page" for 0 to 3, else the number.
[[nodiscard]] QString wordsModeName(qint64 wordsRestriction);
/// "Google", ...; the identifier itself when no service has it.
[[nodiscard]] QString engineName(const QString& engineId);

} // namespace quarry
