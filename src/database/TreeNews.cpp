#include "database/TreeNews.h"

#include <algorithm>

namespace quarry {

bool hasUnreadResults(const QList<QueryCorePtr>& topLevel)
{
    return std::any_of(topLevel.begin(), topLevel.end(),
                       [](const QueryCorePtr& node) { return node->nbUnreadItem() > 0; });
}

QList<QuerySummary> summariesBelow(const QueryCorePtr& node)
{
    QList<QuerySummary> summaries;
    const QList<QueryCorePtr> childs = node ? node->childs().value_or(QList<QueryCorePtr>()) : QList<QueryCorePtr>();
    for (const QueryCorePtr& child : childs) {
        if (child->isQueryFolder())
            summaries.append(summariesBelow(child));
        else
            summaries.append({child->nbUnreadItem(), child->title(), child->UUID()});
    }
    return summaries;
}

} // namespace quarry
