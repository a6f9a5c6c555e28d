#include "exchange/TreeWalk.h"

namespace quarry {

void walk(const QueryCorePtr& node, const std::function<void(const QueryCorePtr&, int)>& visit, int depth)
{
    visit(node, depth);
    for (const QueryCorePtr& child : node->childs().value_or(QList<QueryCorePtr>()))
        walk(child, visit, depth + 1);
}

QList<QueryCorePtr> queriesBelow(const QueryCorePtr& node)
{
    QList<QueryCorePtr> queries;
    walk(node, [&](const QueryCorePtr& each, int) {
        if (each->isLeaf())
            queries.append(each);
    });
    return queries;
}

NodeCounts countsOf(const QueryCorePtr& node)
{
    NodeCounts counts;
    for (const QueryCorePtr& query : queriesBelow(node)) {
        counts.unread += query->nbUnreadItem();
        counts.results += query->nbItems();
        counts.hidden += query->nbHiddenItems();
    }
    return counts;
}

} // namespace quarry
