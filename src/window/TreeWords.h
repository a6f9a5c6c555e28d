#pragma once

#include "archive/StringTable.h"
#include "platform/Date.h"
#include "session/TreeCounts.h"

#include <QString>

#include <optional>

namespace quarry {

/// What a row of the tree shows in its badge and its picture, for those who do not see them.
struct TreeRow {
    QString title;
    bool isFolder = false;
    bool isPaused = false;
    bool isUpdating = false;
    TreeCounts::Counts counts;
    qsizetype queries = 0;       ///< Below a folder.
    std::optional<Date> updated; ///< Of a query; the reference date: never.
};

/// "pond, 60 unread, paused"
[[nodiscard]] QString spokenRow(const StringTable& texts, const TreeRow& row);
/// Several lines: the whole title, what is below it, and when it was last refreshed.
[[nodiscard]] QString tipOfRow(const StringTable& texts, const TreeRow& row);

} // namespace quarry
