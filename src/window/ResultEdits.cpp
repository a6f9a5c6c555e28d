#include "window/ResultEdits.h"

#include "exchange/TreeWalk.h"

#include <QMap>

namespace quarry {

namespace {

/// The rows of which `wanted` is true.
template <typename Wanted>
QModelIndexList rowsWhere(const ResultModel& model, const QModelIndexList& rows, const Wanted& wanted)
{
    QModelIndexList found;
    for (const QModelIndex& index : rows) {
        if (wanted(model.row(index).record))
            found.append(index);
    }
    return found;
}

} // namespace

void ResultEdits::setRead(bool read, const ResultModel& model, const QModelIndexList& rows)
{
    const ResultSelection changing =
        model.selection(rowsWhere(model, rows, [read](const ResultRecord& record) { return record.isRead() != read; }));
    if (changing.isEmpty())
        return;
    _edits.perform(_texts.text(read ? QStringLiteral("201_Undo mark read") : QStringLiteral("201_Undo mark unread")),
                   {edits::setRead(read, changing), edits::setRead(!read, changing)});
}

void ResultEdits::markOpened(const ResultModel& model, const QModelIndexList& rows)
{
    const ResultSelection unread =
        model.selection(rowsWhere(model, rows, [](const ResultRecord& record) { return !record.isRead(); }));
    if (!unread.isEmpty())
        markSeen(unread);
}

void ResultEdits::markSeen(const ResultSelection& results)
{
    _edits.performQuietly(edits::setRead(true, results));
}

void ResultEdits::markAllRead(const QList<QueryCorePtr>& nodes)
{
    QStringList unread;
    qint64 results = 0;
    for (const QueryCorePtr& node : nodes) {
        const QList<QueryCorePtr> queries = queriesBelow(node);
        for (const QueryCorePtr& query : queries) {
            if (const qint64 ofQuery = _tree.counts().of(query->UUID()).unread; ofQuery > 0) {
                unread.append(query->UUID());
                results += ofQuery;
            }
        }
    }
    if (!unread.isEmpty())
        _edits.perform(_texts.text(QStringLiteral("201_Undo mark all read")), edits::markAllRead(unread, results));
}

void ResultEdits::setHidden(bool hidden, const ResultModel& model, const QModelIndexList& rows)
{
    const ResultSelection changing = model.selection(rows);
    if (!changing.isEmpty())
        _edits.perform(_texts.text(hidden ? QStringLiteral("201_Undo hide") : QStringLiteral("201_Undo show again")),
                       {edits::setHidden(hidden, changing), edits::setHidden(!hidden, changing)});
}

void ResultEdits::setRating(qint64 rating, const ResultModel& model, const QModelIndexList& rows)
{
    QMap<qint64, QModelIndexList> byFormerRating;
    for (const QModelIndex& index : rows) {
        const qint64 former = model.row(index).record.rating().value_or(0);
        if (former != rating)
            byFormerRating[former].append(index);
    }
    QList<edits::Reversible> changes;
    for (auto former = byFormerRating.constBegin(); former != byFormerRating.constEnd(); ++former) {
        const ResultSelection changing = model.selection(former.value());
        changes.append({edits::setRating(rating, changing), edits::setRating(former.key(), changing)});
    }
    if (!changes.isEmpty())
        _edits.perform(_texts.text(QStringLiteral("201_Undo rating")), edits::together(changes));
}

void ResultEdits::excludeHosts(const ResultModel& model, const QModelIndexList& rows)
{
    QMap<QString, QStringList> hostsByQuery;
    for (const QModelIndex& index : rows) {
        const ResultListing::Row& row = model.row(index);
        const std::optional<Url> url = row.record.url();
        if (const QString host = url ? url->host().toString() : QString(); !host.isEmpty())
            hostsByQuery[model.listing().queryUuid(row)].append(host);
    }
    QList<edits::Reversible> changes;
    for (auto hosts = hostsByQuery.begin(); hosts != hostsByQuery.end(); ++hosts) {
        hosts->removeDuplicates();
        changes.append(edits::exclusion(hosts.key(), *hosts, _tree.counts().of(hosts.key()).results));
    }
    if (!changes.isEmpty())
        _edits.perform(_texts.text(QStringLiteral("201_Undo exclude")), edits::together(changes));
}

} // namespace quarry
