// Starting, counting and ending updates.

#include "database/QueryDatabaseEngineImpl.h"

namespace quarry {

namespace {

constexpr std::chrono::milliseconds PauseBetweenStarts(500);

/// One less, but never below 0. Returns what is left.
qint64 countDown(std::atomic<qint64>& counter)
{
    qint64 before = counter;
    qint64 after = 0;
    do
        after = std::max<qint64>(before - 1, 0);
    while (!counter.compare_exchange_weak(before, after));
    return after;
}

} // namespace

void QueryDatabaseEngine::updateQuery(const QueryCorePtr& node)
{
    if (!node || !node->isEnabled())
        return;
    _impl->nbUpdating = 1;
    if (_impl->parts.updates)
        _impl->parts.updates->updateAll(node);
}

void QueryDatabaseEngine::updateAllQueries()
{
    if (_impl->updatingLock.exchange(true))
        return;
    dbSynchCheck();
    const QueryCorePtr root = _impl->root->get();
    const qint64 enabled = numberTotalOfEnabledQueries(root);
    _impl->nbUpdating = enabled;
    for (const QueryCorePtr& child : root->childs().value_or(QList<QueryCorePtr>())) {
        if (_impl->mustStopThreads || _impl->parts.pauser.isStopped())
            break;
        if (!child->isEnabled() && !child->isQueryFolder())
            continue;
        if (_impl->parts.updates)
            _impl->parts.updates->updateAll(child);
        _impl->parts.pauser.pause(PauseBetweenStarts);
    }
    // Without any query no update will ever end this pass.
    if (enabled == 0)
        _impl->updatingLock = false;
}

qint64 QueryDatabaseEngine::numberOfUpdatesRunning() const
{
    return _impl->nbUpdating;
}

void QueryDatabaseEngine::stopAllThreads()
{
    _impl->mustStopThreads = true;
}

bool QueryDatabaseEngine::isUpdating() const
{
    return _impl->updatingLock;
}

bool QueryDatabaseEngine::isBuildingCache() const
{
    return _impl->cacheCreationLock;
}

void QueryDatabaseEngine::updateNotification()
{
    if (countDown(_impl->nbUpdating) == 0) {
        saveDatabase(false);
        _impl->updatingLock = false;
        _impl->parts.notifications.post(QStringLiteral("uptDidFinish"));
    }
    if (_impl->mustStopThreads) {
        _impl->updatingLock = false;
        if (_impl->parts.terminateReply)
            _impl->parts.terminateReply();
    }
}

} // namespace quarry
