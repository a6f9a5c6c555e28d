// What the database answers about its tree, and the changes to it.

#include "database/QueryDatabaseEngineImpl.h"
#include "platform/SystemLog.h"

namespace quarry {

namespace {

QList<QueryCorePtr> childsOf(const QueryCorePtr& node)
{
    return node ? node->childs().value_or(QList<QueryCorePtr>()) : QList<QueryCorePtr>();
}

template <typename Counts>
qint64 countLeaves(const QueryCorePtr& node, const Counts& counts)
{
    qint64 count = 0;
    for (const QueryCorePtr& child : childsOf(node)) {
        if (child->isQueryFolder())
            count += countLeaves(child, counts);
        else if (counts(child))
            ++count;
    }
    return count;
}

void appendResults(const QueryCorePtr& node, ResultList& found)
{
    for (const QueryCorePtr& child : childsOf(node)) {
        if (child->isQueryFolder()) {
            appendResults(child, found);
            continue;
        }
        for (const ResultRecord& record : child->results().value_or(ResultList())) {
            if (record.visible().has_value())
                found.append(record);
        }
    }
}

QueryCorePtr withoutChecksum(const QueryCorePtr& node)
{
    if (node)
        node->setComputeChecksum(false);
    return node;
}

} // namespace

QueryCorePtr QueryDatabaseEngine::rootQuery()
{
    dbSynchCheck();
    return _impl->root->get();
}

QueryCorePtr QueryDatabaseEngine::currentRoot() const
{
    return _impl->root->get();
}

QueryCorePtr QueryDatabaseEngine::appendToRoot(const QueryCorePtr& node)
{
    if (node) {
        _impl->root->get()->addChild(node);
        saveDatabase(false);
    }
    return node;
}

QueryCorePtr QueryDatabaseEngine::addQuery(const QString& text)
{
    dbSynchCheck();
    QueryCorePtr node = appendToRoot(searchOrCreateQuery(text));
    if (node && _impl->parts.updates)
        _impl->parts.updates->update(node);
    _impl->countQueries();
    return node;
}

QueryCorePtr QueryDatabaseEngine::addQuery(const QString& text, bool isFolder)
{
    dbSynchCheck();
    QueryCorePtr node = isFolder ? withoutChecksum(QueryCore::initWithQueryFolder(text)) : searchOrCreateQuery(text);
    appendToRoot(node);
    _impl->countQueries();
    return node;
}

QueryCorePtr QueryDatabaseEngine::addAdvancedQuery(const QString& query, qint64 wordsResctriction,
                                                   const QString& siteRestriction, const QString& urlRegularExpression)
{
    dbSynchCheck();
    return appendToRoot(
        QueryCore::initWithAdvancedQuery(query, wordsResctriction, siteRestriction, urlRegularExpression));
}

QueryCorePtr QueryDatabaseEngine::addAdvancedCombinedQuery(const QStringList& queries, qint64 wordsResctriction,
                                                           const QString& siteRestriction)
{
    dbSynchCheck();
    return appendToRoot(QueryCore::initWithAdvancedCombinedQuery(queries, wordsResctriction, siteRestriction));
}

QueryCorePtr QueryDatabaseEngine::searchOrCreateQuery(const QString& text)
{
    return withoutChecksum(QueryCore::initWithQuery(text));
}

std::optional<QList<QueryCorePtr>> QueryDatabaseEngine::queries() const
{
    return _impl->root->get()->childs();
}

QueryCorePtr QueryDatabaseEngine::queryForUUID(const QString& uuid) const
{
    return _impl->root->get()->findQueryForUUID(uuid);
}

std::size_t QueryDatabaseEngine::numberOfQueries() const
{
    return _impl->queriesNumber;
}

qint64 QueryDatabaseEngine::numberTotalOfQueries(const QueryCorePtr& node) const
{
    return countLeaves(node ? node : _impl->root->get(), [](const QueryCorePtr&) { return true; });
}

qint64 QueryDatabaseEngine::numberTotalOfEnabledQueries(const QueryCorePtr& node) const
{
    return countLeaves(node, [](const QueryCorePtr& leaf) { return leaf->isEnabled(); });
}

std::optional<ResultList> QueryDatabaseEngine::resultsInDatabase()
{
    if (_impl->searchingLock)
        return std::nullopt;
    return searchResultsForQuery(rootQuery());
}

ResultList QueryDatabaseEngine::searchResultsForQuery(const QueryCorePtr& node)
{
    ResultList found;
    appendResults(node, found);
    _impl->searchingLock = false;
    return found;
}

void QueryDatabaseEngine::removeQuery(const QueryCorePtr& node)
{
    if (const QueryCorePtr parent = node ? node->parent() : nullptr)
        parent->deleteChild(node);
    saveDatabase(false);
    _impl->countQueries();
}

void QueryDatabaseEngine::toggleQueryIsEnable(const QueryCorePtr& node)
{
    if (!node)
        return;
    if (node->isLeaf()) {
        node->setEnabled(!node->isEnabled());
        return;
    }
    for (const QueryCorePtr& child : childsOf(node)) {
        if (child->isLeaf())
            child->setEnabled(!child->isEnabled());
    }
}

void QueryDatabaseEngine::moveQuery(const QueryCorePtr& node, const QueryCorePtr& asChildOf, std::size_t index)
{
    systemLog(QStringLiteral("moveQuery:(QueryCore*)inMovedQuery asChildOf:(QueryCore*)inDestinationQuery "
                             "index:(UInt)inIndex  SHOULD NOT BE USED"));
    // Taken out of its place, a folder could not be put below itself or into a query, and would be lost.
    if (!node || !asChildOf || asChildOf->isLeaf() || node->contains(asChildOf))
        return;
    const QueryCorePtr kept = node->shared_from_this(); // `node` may lie in the very list it is removed from.
    if (const QueryCorePtr parent = kept->parent())
        parent->removeChild(kept);
    asChildOf->insertChild(kept, static_cast<qint64>(index));
    saveDatabase(false);
}

void QueryDatabaseEngine::markItemAsRead(const ResultRecord& item, const QueryCorePtr& query)
{
    if (query)
        query->markItemAsRead(item);
}

bool QueryDatabaseEngine::unreadResults()
{
    const QList<QueryCorePtr> childs = childsOf(_impl->root->get());
    dbSynchCheck();
    return hasUnreadResults(childs);
}

QList<QuerySummary> QueryDatabaseEngine::queriesWithNewResults()
{
    return queriesWithNewResults(nullptr);
}

QList<QuerySummary> QueryDatabaseEngine::queriesWithNewResults(const QueryCorePtr& node)
{
    return summariesBelow(node ? node : rootQuery());
}

} // namespace quarry
