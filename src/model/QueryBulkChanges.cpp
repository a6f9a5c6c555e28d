// Changes to many results of a query at once, each in one pass over the list.

#include "model/PageCacheFiles.h"
#include "model/QueryCore.h"
#include "model/ResultKeys.h"
#include "model/TreeLock.h"

namespace quarry {

namespace {

/// The records of both lists that are not there yet, at the end.
void addMissing(std::optional<ResultList>& list, const ResultList& records, ResultKeys& known)
{
    for (const ResultRecord& record : records) {
        if (known.contains(record))
            continue;
        known.add(record);
        if (!list)
            list.emplace();
        list->append(record);
    }
}

} // namespace

ResultKeys::ResultKeys(const ResultList& records)
{
    _keys.reserve(records.size());
    for (const ResultRecord& record : records)
        add(record);
}

QString ResultKeys::keyOf(const ResultRecord& record)
{
    const std::optional<QString> uuid = record.linkUuid();
    // No UUID begins with a blank.
    return uuid ? *uuid : u' ' + record.urlText().value_or(QString());
}

void QueryCore::setRead(bool read, const ResultKeys& ofItems)
{
    const TreeLock lock;
    if (!_fields._currentResult || ofItems.isEmpty())
        return;
    for (ResultRecord& record : *_fields._currentResult) {
        if (record.isRead() != read && ofItems.contains(record))
            record = std::move(record).withUserSaw(read).withParentQueryUuid(_fields._uuid);
    }
    _nbUnread = -1;
    touch();
}

void QueryCore::setHidden(bool hidden, const ResultKeys& ofItems)
{
    const TreeLock lock;
    std::optional<ResultList>& from = hidden ? _fields._currentResult : _fields._hiddenResults;
    std::optional<ResultList>& to = hidden ? _fields._hiddenResults : _fields._currentResult;
    if (!from || ofItems.isEmpty())
        return;
    ResultList staying;
    ResultList moving;
    for (const ResultRecord& record : std::as_const(*from)) {
        if (ofItems.contains(record))
            moving.append(record.withVisible(!hidden));
        else
            staying.append(record);
    }
    if (moving.isEmpty())
        return;
    from = staying;
    if (!to)
        to.emplace();
    to->append(moving);
    _nbUnread = -1;
    touch();
}

void QueryCore::setRating(qint64 rating, const ResultKeys& ofItems)
{
    const TreeLock lock;
    if (!_fields._currentResult || ofItems.isEmpty())
        return;
    for (ResultRecord& record : *_fields._currentResult) {
        if (record.rating().value_or(0) == rating || !ofItems.contains(record))
            continue;
        record = std::move(record).withRating(rating);
        if (rating >= 1)
            record = std::move(record).withParentQueryUuid(_fields._uuid);
        else if (_services)
            removeThumbnail(_services->cachesFolder, _fields._uuid, record.linkUuid().value_or(QString()));
    }
    touch();
}

void QueryCore::restoreResults(const ResultList& visible, const ResultList& hidden)
{
    const TreeLock lock;
    ResultKeys known(_fields._currentResult.value_or(ResultList()));
    for (const ResultRecord& record : _fields._hiddenResults.value_or(ResultList()))
        known.add(record);
    addMissing(_fields._currentResult, visible, known);
    addMissing(_fields._hiddenResults, hidden, known);
    _nbUnread = -1;
    touch();
}

} // namespace quarry
