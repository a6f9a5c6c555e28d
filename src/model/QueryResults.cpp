// The results of a query: listing, sorting, hiding, marking, rating and excluding them.

#include "model/PageCacheFiles.h"
#include "model/QueryCore.h"
#include "model/ResultComparator.h"
#include "model/ResultSearch.h"
#include "model/TreeLock.h"

#include <QSet>

#include <algorithm>
#include <utility>

namespace quarry {

namespace {

/// The place of the first equal record, or -1.
qsizetype placeOf(const std::optional<ResultList>& list, const ResultRecord& record)
{
    return list ? list->indexOf(record) : -1;
}

/// The first record with that "link uuid key".
std::optional<ResultRecord> withLinkUuid(const std::optional<ResultList>& list, const QString& uuid)
{
    if (!list)
        return std::nullopt;
    const auto found = std::find_if(list->begin(), list->end(),
                                    [&uuid](const ResultRecord& record) { return record.linkUuid() == uuid; });
    return found == list->end() ? std::nullopt : std::optional(*found);
}

QString hostOf(const ResultRecord& record)
{
    const std::optional<Url> url = record.url();
    return url ? url->host().toString() : QString();
}

QString hostOf(const QString& address)
{
    const std::optional<Url> url = Url::fromText(address);
    return url ? url->host().toString() : QString();
}

} // namespace

std::optional<ResultList> QueryCore::results() const
{
    std::optional<ResultList> visible;
    std::optional<QString> wanted;
    {
        const TreeLock lock;
        visible = _fields._currentResult;
        wanted = _searchString;
    }
    if (visible && wanted && !wanted->isEmpty())
        return ResultSearch(*wanted).filtered(*visible);
    return visible;
}

std::optional<ResultList> QueryCore::resultsSortedBy(std::int32_t order)
{
    const TreeLock lock;
    if (_fields._isFolder)
        return _fields._currentResult;
    const bool sameOrder = std::exchange(_sortType, order) == order;
    const bool moved = _fields._currentResult && sortResults(*_fields._currentResult, order);
    if (moved || !sameOrder)
        touch();
    return results();
}

std::optional<ResultList> QueryCore::hiddenResults()
{
    const TreeLock lock;
    if (_fields._hiddenResults && sortResults(*_fields._hiddenResults, ByAddress))
        touch();
    return _fields._hiddenResults;
}

void QueryCore::setHidden(bool hidden, const ResultRecord& forItem)
{
    const TreeLock lock;
    std::optional<ResultList>& from = hidden ? _fields._currentResult : _fields._hiddenResults;
    std::optional<ResultList>& to = hidden ? _fields._hiddenResults : _fields._currentResult;
    const qsizetype place = placeOf(from, forItem);
    if (place < 0)
        return;
    _nbUnread = -1;
    const ResultRecord moved = from->at(place).withVisible(!hidden);
    if (!to)
        to.emplace();
    to->append(moved);
    from->removeAt(place);
    touch();
    (void)nbUnreadItem();
}

void QueryCore::markItemAsRead(const ResultRecord& item)
{
    markItem(item, true);
}

void QueryCore::markItemAsUnread(const ResultRecord& item)
{
    markItem(item, false);
}

void QueryCore::markItem(const ResultRecord& item, bool read)
{
    const TreeLock lock;
    const qsizetype place = placeOf(_fields._currentResult, item);
    if (place < 0)
        return;
    ResultRecord& record = (*_fields._currentResult)[place];
    record = record.withUserSaw(read).withParentQueryUuid(_fields._uuid);
    _nbUnread += read ? -1 : 1;
    touch();
}

void QueryCore::markAllItemAsRead()
{
    const TreeLock lock;
    if (!_fields._currentResult)
        return;
    for (ResultRecord& record : *_fields._currentResult)
        record = std::move(record).withUserSaw(true).withParentQueryUuid(_fields._uuid);
    _nbUnread -= _fields._currentResult->size();
    touch();
}

std::optional<ResultRecord> QueryCore::setRating(qint64 rating, const ResultRecord& forItem)
{
    if (forItem.rating().value_or(0) == rating)
        return forItem;
    const TreeLock lock;
    const qsizetype place = placeOf(_fields._currentResult, forItem);
    if (place < 0)
        return std::nullopt;
    ResultRecord rated = _fields._currentResult->at(place).withRating(rating);
    if (rating >= 1)
        rated = rated.withParentQueryUuid(_fields._uuid);
    else if (_services)
        removeThumbnail(_services->cachesFolder, _fields._uuid, rated.linkUuid().value_or(QString()));
    _fields._currentResult->replace(place, rated);
    touch();
    return rated;
}

void QueryCore::excludeItem(const ResultRecord& item)
{
    excludeHosts({hostOf(item)});
}

void QueryCore::excludeURLString(const QString& address)
{
    const bool isWeb = address.contains(QLatin1String("http://")) || address.contains(QLatin1String("https://"));
    excludeHosts({hostOf(isWeb ? address : QLatin1String("http://") + address)});
}

void QueryCore::excludeHosts(const QStringList& hosts)
{
    QSet<QString> excluded(hosts.begin(), hosts.end());
    excluded.remove(QString());
    if (excluded.isEmpty())
        return;
    const TreeLock lock;
    for (const QString& host : std::as_const(excluded)) {
        if (_fields._excludedDomains)
            _fields._excludedDomains->insert(host, true);
    }
    if (_fields._currentResult)
        _fields._currentResult->removeIf([&](const ResultRecord& record) { return excluded.contains(hostOf(record)); });
    touch();
}

bool QueryCore::isExcludedURL(const QString& address) const
{
    const QString host = hostOf(address);
    const TreeLock lock;
    return !host.isEmpty() && _fields._excludedDomains && _fields._excludedDomains->contains(host);
}

QStringList QueryCore::excludedHosts() const
{
    const TreeLock lock;
    return _fields._excludedDomains ? _fields._excludedDomains->keys() : QStringList();
}

void QueryCore::includeHost(const QString& host)
{
    const TreeLock lock;
    if (_fields._excludedDomains && _fields._excludedDomains->remove(host) > 0)
        touch();
}

qsizetype QueryCore::nbItems() const
{
    const std::optional<ResultList> listed = results();
    return listed ? listed->size() : 0;
}

qsizetype QueryCore::nbHiddenItems() const
{
    const TreeLock lock;
    return _fields._hiddenResults ? _fields._hiddenResults->size() : 0;
}

qint64 QueryCore::nbUnreadItem()
{
    const TreeLock lock;
    if (isLeaf()) {
        if (_nbUnread < 1)
            countUnread();
        return _nbUnread;
    }
    _nbUnread = 0;
    for (const QueryCorePtr& child : _childs.value_or(ChildList())) {
        // The first sub-folder answers for the whole folder; the other programs of the product count so too.
        if (child->isQueryFolder())
            return child->nbUnreadItem();
        _nbUnread += child->nbUnreadItem();
    }
    return _nbUnread;
}

void QueryCore::countUnread()
{
    const ResultList listed = results().value_or(ResultList());
    _nbUnread = std::count_if(listed.begin(), listed.end(), [](const ResultRecord& r) { return !r.isRead(); });
}

std::optional<ResultRecord> QueryCore::currentRecord(const ResultRecord& record) const
{
    const TreeLock lock;
    const std::optional<QString> uuid = record.linkUuid();
    if (!uuid || placeOf(_fields._currentResult, record) >= 0 || placeOf(_fields._hiddenResults, record) >= 0)
        return record;
    std::optional<ResultRecord> visible = withLinkUuid(_fields._currentResult, *uuid);
    return visible ? visible : withLinkUuid(_fields._hiddenResults, *uuid);
}

} // namespace quarry
