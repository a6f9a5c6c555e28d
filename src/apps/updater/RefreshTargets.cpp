#include "apps/updater/RefreshTargets.h"

#include <QSet>

#include <functional>

namespace quarry {

namespace {

constexpr qsizetype ShortestBeginning = 4;

using Test = std::function<bool(const QueryCore& node)>;

QList<QueryCorePtr> childrenOf(const QueryCorePtr& node)
{
    return node->childs().value_or(QList<QueryCorePtr>());
}

void collect(const QueryCorePtr& node, const Test& test, QList<QueryCorePtr>& found)
{
    for (const QueryCorePtr& child : childrenOf(node)) {
        if (test(*child))
            found.append(child);
        collect(child, test, found);
    }
}

/// The nodes that a name fits: by UUID, by the beginning of one or by title, else by title whatever the case.
QList<QueryCorePtr> nodesNamed(const QueryCorePtr& root, const QString& name)
{
    const auto isUuid = [&](const QueryCore& node) { return node.UUID().compare(name, Qt::CaseInsensitive) == 0; };
    const auto isName = [&](const QueryCore& node) {
        return node.title() == name ||
               (name.size() >= ShortestBeginning && node.UUID().startsWith(name, Qt::CaseInsensitive));
    };
    const auto isTitle = [&](const QueryCore& node) { return node.title().compare(name, Qt::CaseInsensitive) == 0; };
    QList<QueryCorePtr> found;
    for (const Test& test : {Test(isUuid), Test(isName), Test(isTitle)}) {
        if (found.isEmpty())
            collect(root, test, found);
    }
    return found;
}

QString ambiguous(const QString& name, const QList<QueryCorePtr>& candidates)
{
    QString text = QStringLiteral("\"%1\" could be any of these:").arg(name);
    for (const QueryCorePtr& node : candidates)
        text += QStringLiteral("\n  ") + node->UUID() + QStringLiteral("  ") + node->title();
    return text;
}

} // namespace

QList<QueryCorePtr> queriesStartedBy(const QueryCorePtr& node)
{
    if (node->isLeaf())
        return node->isEnabled() ? QList<QueryCorePtr>{node} : QList<QueryCorePtr>();
    QList<QueryCorePtr> queries;
    for (const QueryCorePtr& child : childrenOf(node)) {
        if (child->isEnabled())
            queries += queriesStartedBy(child);
    }
    return queries;
}

QList<QueryCorePtr> queriesOfFullRefresh(const QueryCorePtr& root)
{
    QList<QueryCorePtr> queries;
    for (const QueryCorePtr& child : childrenOf(root))
        queries += queriesStartedBy(child);
    return queries;
}

RefreshTargets RefreshTargets::named(const QueryCorePtr& root, const QStringList& names)
{
    RefreshTargets targets;
    QSet<QueryCorePtr> taken;
    for (const QString& name : names) {
        const QList<QueryCorePtr> found = nodesNamed(root, name);
        if (found.size() != 1) {
            targets.error =
                found.isEmpty() ? QStringLiteral("there is no query \"%1\"").arg(name) : ambiguous(name, found);
            return targets;
        }
        if (!found.first()->isEnabled()) {
            targets.paused.append(found.first());
            continue;
        }
        QList<QueryCorePtr> fresh;
        for (const QueryCorePtr& query : queriesStartedBy(found.first())) {
            if (!taken.contains(query))
                fresh.append(query);
            taken.insert(query);
        }
        targets.queries.append(fresh);
    }
    return targets;
}

} // namespace quarry
