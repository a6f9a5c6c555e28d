#include "session/TreeEdits.h"

#include "model/TreeLock.h"

#include <algorithm>

namespace quarry::edits {

namespace {

QList<QueryCorePtr> childsOf(const QueryCorePtr& node)
{
    return node->childs().value_or(QList<QueryCorePtr>());
}

/// Puts a node in that place of the folder. The tree itself cannot insert at the very front: there the child that
/// was first steps behind.
void place(const QueryCorePtr& node, const QueryCorePtr& folder, qsizetype index)
{
    if (index > 0 || folder->numberOfChilds() == 0) {
        folder->insertChild(node, index);
        return;
    }
    const QueryCorePtr first = childsOf(folder).constFirst();
    folder->insertChild(node, 1);
    folder->removeChild(first);
    folder->insertChild(first, 1);
}

/// The folder of this very tree that holds the node. A node asked for its parent may name one of another tree: nodes
/// from a file find theirs by the key path, in the tree that is current by then.
QueryCorePtr folderOf(const QueryCorePtr& root, const QueryCorePtr& node)
{
    const QList<QueryCorePtr> childs = childsOf(root);
    if (childs.contains(node))
        return root;
    for (const QueryCorePtr& child : childs) {
        if (QueryCorePtr found = child->isQueryFolder() ? folderOf(child, node) : nullptr)
            return found;
    }
    return nullptr;
}

/// The top folder may be another one in each tree, so it goes by no UUID.
QueryCorePtr folderNamed(const QueryCorePtr& root, const QString& uuid)
{
    return uuid.isEmpty() ? root : root->findQueryForUUID(uuid);
}

void collect(const QueryCorePtr& node, QHash<QString, QueryCorePtr>& nodes)
{
    const QString uuid = node->UUID();
    if (!nodes.contains(uuid)) // The first one, as findQueryForUUID has it.
        nodes.insert(uuid, node);
    const QList<QueryCorePtr> childs = childsOf(node);
    for (const QueryCorePtr& child : childs)
        collect(child, nodes);
}

/// Calls for each node that is there. Many are found in one walk over the tree instead of one walk each.
void forEach(const QueryCorePtr& root, const QStringList& uuids, const std::function<void(QueryCore& node)>& call)
{
    constexpr qsizetype Few = 8;
    QHash<QString, QueryCorePtr> nodes;
    if (uuids.size() > Few)
        collect(root, nodes);
    for (const QString& uuid : uuids) {
        if (const QueryCorePtr node = uuids.size() > Few ? nodes.value(uuid) : root->findQueryForUUID(uuid))
            call(*node);
    }
}

/// Calls for each result that the query has now. They are let go under the lock of the tree, so that whoever then
/// changes them in place, as nobody else has them, comes after this.
void forEachResult(const QueryCore& query, const std::function<void(const ResultRecord& record)>& call)
{
    ResultList records = query.snapshot().fields._currentResult.value_or(ResultList());
    for (const ResultRecord& record : std::as_const(records))
        call(record);
    const TreeLock lock;
    records.clear();
}

using ResultsByHost = QHash<QString, ResultList>;
ResultsByHost resultsOf(const QueryCore& query, const QStringList& hosts)
{
    ResultsByHost found;
    for (const QString& host : hosts)
        found.insert(host, {});
    forEachResult(query, [&found](const ResultRecord& record) {
        const std::optional<Url> url = record.url();
        if (const auto host = url ? found.find(url->host().toString()) : found.end(); host != found.end())
            host->append(record);
    });
    return found;
}

using Selected = std::function<void(QueryCore& query, const ResultKeys& keys)>;
TreeEdit ofResults(const ResultSelection& results, const Selected& how)
{
    qint64 size = 0;
    for (const ResultKeys& keys : results)
        size += keys.size();
    return {[results, how](const QueryCorePtr& root) {
                forEach(root, results.keys(), [&](QueryCore& query) { how(query, *results.constFind(query.UUID())); });
            },
            results.keys(), false, size >= LargeEditResults};
}

ResultKeys unreadOf(const QueryCore& query)
{
    ResultKeys keys;
    forEachResult(query, [&keys](const ResultRecord& record) {
        if (!record.isRead())
            keys.add(record);
    });
    return keys;
}

} // namespace

TreeEdit setRead(bool read, const ResultSelection& results)
{
    return ofResults(results, [read](QueryCore& query, const ResultKeys& keys) { query.setRead(read, keys); });
}

Reversible markAllRead(const QStringList& queries, qint64 results)
{
    // Filled before anybody else sees the edit as one that was made.
    const auto unread = std::make_shared<std::optional<ResultSelection>>();
    const auto change = [unread, queries](const QueryCorePtr& root) {
        if (!*unread) {
            ResultSelection& found = unread->emplace();
            forEach(root, queries, [&found](QueryCore& query) { found.insert(query.UUID(), unreadOf(query)); });
        }
        setRead(true, **unread).apply(root);
    };
    const auto opposite = [unread](const QueryCorePtr& root) {
        if (*unread)
            setRead(false, **unread).apply(root);
    };
    const bool isLarge = results >= LargeEditResults;
    return {{change, queries, false, isLarge}, {opposite, queries, false, isLarge}};
}

TreeEdit setHidden(bool hidden, const ResultSelection& results)
{
    return ofResults(results, [hidden](QueryCore& query, const ResultKeys& keys) { query.setHidden(hidden, keys); });
}

TreeEdit setRating(qint64 rating, const ResultSelection& results)
{
    return ofResults(results, [rating](QueryCore& query, const ResultKeys& keys) { query.setRating(rating, keys); });
}

Reversible exclusion(const QString& queryUuid, const QStringList& hosts, qint64 results)
{
    const auto dropped = std::make_shared<ResultsByHost>(); // Under the tree lock.
    const auto exclude = [hosts, dropped](QueryCore& query) {
        const TreeLock lock;
        const ResultsByHost now = resultsOf(query, hosts);
        for (auto host = now.constBegin(); host != now.constEnd(); ++host) {
            // A tree in which the host is excluded already has nothing to say about what was dropped.
            if (!host->isEmpty())
                dropped->insert(host.key(), *host);
        }
        query.excludeHosts(hosts);
        query.invalidateUnread();
    };
    const auto include = [hosts, dropped](QueryCore& query) {
        const TreeLock lock;
        ResultList back;
        for (const QString& host : hosts) {
            query.includeHost(host);
            back += dropped->value(host);
        }
        query.restoreResults(back, {});
    };
    Reversible exclusion = {change({queryUuid}, exclude), change({queryUuid}, include)};
    exclusion.change.large = exclusion.opposite.large = results >= LargeEditResults;
    return exclusion;
}

Reversible insertion(const QueryCorePtr& node, const QString& folderUuid, qsizetype index)
{
    const QString uuid = node->UUID();
    const auto outside = std::make_shared<QueryCorePtr>(node); // Under the tree lock.
    const TreeEdit insert = {[uuid, outside, folderUuid, index](const QueryCorePtr& root) {
                                 const TreeLock lock;
                                 const QueryCorePtr wanted = folderNamed(root, folderUuid);
                                 // A folder that went meanwhile: better at the top than lost.
                                 const QueryCorePtr folder = wanted && wanted->isQueryFolder() ? wanted : root;
                                 if (!root->findQueryForUUID(uuid))
                                     place(*outside, folder, std::min(index, folder->numberOfChilds()));
                             },
                             {uuid},
                             true};
    const TreeEdit remove = {[uuid, outside](const QueryCorePtr& root) {
                                 const TreeLock lock;
                                 const QueryCorePtr found = root->findQueryForUUID(uuid);
                                 const QueryCorePtr folder = found ? folderOf(root, found) : nullptr;
                                 if (!folder)
                                     return;
                                 folder->removeChild(found);
                                 *outside = found;
                             },
                             {uuid},
                             true};
    return {insert, remove};
}

Reversible removal(const QueryCorePtr& root, const QueryCorePtr& node)
{
    const Place place = placeOf(root, node);
    return insertion(node, place.folderUuid, place.index).reversed();
}

TreeEdit move(const QString& uuid, const QString& folderUuid, qsizetype index)
{
    return {[uuid, folderUuid, index](const QueryCorePtr& root) {
                const QueryCorePtr node = root->findQueryForUUID(uuid);
                const QueryCorePtr folder = folderNamed(root, folderUuid);
                if (!node || !folder || node == root || !folder->isQueryFolder() || node->contains(folder))
                    return;
                const TreeLock whole;
                if (const QueryCorePtr parent = folderOf(root, node))
                    parent->removeChild(node);
                place(node, folder, std::min(index, folder->numberOfChilds()));
            },
            {uuid},
            true};
}

TreeEdit rename(const QString& uuid, const std::optional<QString>& title)
{
    return change({uuid}, [title](QueryCore& node) { node.setTitle(title); });
}

TreeEdit change(const QStringList& uuids, const std::function<void(QueryCore& node)>& how)
{
    return {[uuids, how](const QueryCorePtr& root) { forEach(root, uuids, how); }, uuids, false};
}

TreeEdit together(const QList<TreeEdit>& changes)
{
    TreeEdit all;
    for (const TreeEdit& each : changes) {
        all.queries += each.queries;
        all.structure = all.structure || each.structure;
        all.large = all.large || each.large;
    }
    all.queries.removeDuplicates();
    all.apply = [changes](const QueryCorePtr& root) {
        for (const TreeEdit& each : changes)
            each.apply(root);
    };
    return all;
}

Reversible together(const QList<Reversible>& changes)
{
    QList<TreeEdit> forth;
    QList<TreeEdit> back;
    for (const Reversible& each : changes) {
        forth.append(each.change);
        back.append(each.opposite);
    }
    return {together(forth), together(back)};
}

QList<QueryCorePtr> topmost(const QueryCorePtr& root, const QStringList& uuids)
{
    QList<QueryCorePtr> nodes;
    for (const QString& uuid : uuids) {
        if (const QueryCorePtr node = root->findQueryForUUID(uuid); node && node != root)
            nodes.append(node);
    }
    QList<QueryCorePtr> top;
    for (const QueryCorePtr& node : nodes) {
        const bool isBelow = std::any_of(nodes.begin(), nodes.end(), [&node](const QueryCorePtr& other) {
            return other != node && other->contains(node);
        });
        if (!isBelow)
            top.append(node);
    }
    return top;
}

Place placeOf(const QueryCorePtr& root, const QueryCorePtr& node)
{
    const QueryCorePtr folder = folderOf(root, node);
    if (!folder)
        return {};
    return {folder == root ? QString() : folder->UUID(), childsOf(folder).indexOf(node)};
}

} // namespace quarry::edits
