#pragma once

#include "agent/StatusItem.h"
#include "archive/StringTable.h"
#include "database/TreeNews.h"

#include <QList>

namespace quarry {

/// What the info item and the notification say: a line for each query that has something new, in the order given.
[[nodiscard]] InfoText newResultsText(const QList<QuerySummary>& queries, const StringTable& texts);

} // namespace quarry
