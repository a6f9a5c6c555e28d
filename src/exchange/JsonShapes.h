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

} // namespace quarry
