// What the update cycle and the page copy leave on a node: flags and counters that are not stored.

#include "model/QueryCore.h"
#include "model/TreeLock.h"

#include <utility>

namespace quarry {

bool QueryCore::isUpdating() const
{
    const TreeLock lock;
    return _updating;
}

void QueryCore::setUpdating(bool updating)
{
    const TreeLock lock;
    _updating = updating;
}

qint64 QueryCore::numberOfLinksAddedOnLatestUpdate() const
{
    const TreeLock lock;
    return _newResultsAdded_volatile;
}

qint64 QueryCore::numberOfLinksBlacklistedOnLatestUpdate() const
{
    const TreeLock lock;
    return _newResultsBlacklisted_volatile;
}

qint64 QueryCore::numberOfLinksExcludedOnLatestUpdate() const
{
    const TreeLock lock;
    return _newResultsExcluded_volatile;
}

void QueryCore::setUpdateCounters(qint64 added, qint64 blacklisted, qint64 excluded)
{
    const TreeLock lock;
    _newResultsAdded_volatile = added;
    _newResultsBlacklisted_volatile = blacklisted;
    _newResultsExcluded_volatile = excluded;
}

bool QueryCore::queryChanged() const
{
    const TreeLock lock;
    return _queryChanged;
}

bool QueryCore::takeQueryChanged()
{
    const TreeLock lock;
    return std::exchange(_queryChanged, false);
}

void QueryCore::invalidateUnread()
{
    const TreeLock lock;
    _nbUnread = -1;
}

void QueryCore::stopTaskNotificationReceived()
{
    const TreeLock lock;
    _mustStopCacheCreation = true;
}

bool QueryCore::takeMustStopCacheCreation()
{
    const TreeLock lock;
    return std::exchange(_mustStopCacheCreation, false);
}

bool QueryCore::mustStopCacheCreation() const
{
    const TreeLock lock;
    return _mustStopCacheCreation;
}

} // namespace quarry
