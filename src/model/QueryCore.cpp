#include "model/QueryCore.h"

#include "model/TreeLock.h"
#include "text/Uuid.h"

#include <QStringBuilder>

#include <utility>

namespace quarry {

namespace {

/// Hosts whose links lead to no page of their own: sound clips of a media store, and the redirects through which a
/// search service counts clicks, whose addresses are new at every refresh.
constexpr QLatin1String MediaPreviewHost("audio-ssl.itunes.apple.com");
constexpr QLatin1String ClickRedirectHost("r.search.yahoo.com");

constexpr std::int32_t InitialSortType = 3;
constexpr qint64 NotCounted = -1;

/// What every new query has; a folder has none of it.
QueryFields newQueryFields()
{
    QueryFields fields;
    fields._uuid = UUIDString();
    fields._lastUpdate = Date::reference();
    fields._currentResult.emplace();
    fields._excludedDomains.emplace();
    fields._wordsRestriction = 0;
    fields._websiteRestriction = QString();
    fields._urlRegularExpression = QString();
    return fields;
}

QString withBlanksAsPlus(QString text)
{
    return text.replace(u' ', u'+');
}

QString joinedQueries(const QStringList& queries)
{
    QString joined;
    for (const QString& query : queries) {
        if (!query.isEmpty())
            joined += u' ' % query;
    }
    return joined;
}

} // namespace

QueryCore::QueryCore(Private /*unused*/, QueryFields fields, std::int32_t sortType, qint64 nbUnread)
    : _fields(std::move(fields)), _sortType(sortType), _nbUnread(nbUnread)
{
}

QueryCorePtr QueryCore::makeQuery(QueryFields fields)
{
    auto node = std::make_shared<QueryCore>(Private(), std::move(fields), InitialSortType, NotCounted);
    node->excludeURLString(MediaPreviewHost);
    node->excludeURLString(ClickRedirectHost);
    return node;
}

QueryCorePtr QueryCore::init()
{
    return makeQuery(newQueryFields());
}

QueryCorePtr QueryCore::initWithQuery(const std::optional<QString>& query)
{
    if (!query || query->isEmpty())
        return nullptr;
    QueryFields fields = newQueryFields();
    fields._query = withBlanksAsPlus(*query);
    return makeQuery(std::move(fields));
}

QueryCorePtr QueryCore::initWithAdvancedQuery(const std::optional<QString>& query, qint64 wordsResctriction,
                                              const QString& siteRestriction,
                                              const std::optional<QString>& urlRegularExpression)
{
    if (!query || query->isEmpty())
        return nullptr;
    QueryFields fields = newQueryFields();
    fields._query = withBlanksAsPlus(*query);
    fields._isAdvancedQuery = true;
    fields._wordsRestriction = wordsResctriction;
    fields._websiteRestriction = siteRestriction;
    fields._urlRegularExpression = urlRegularExpression;
    return makeQuery(std::move(fields));
}

QueryCorePtr QueryCore::initWithAdvancedCombinedQuery(const QStringList& queries, qint64 wordsResctriction,
                                                      const QString& siteRestriction)
{
    if (queries.isEmpty())
        return nullptr;
    QueryFields fields = newQueryFields();
    fields._query = joinedQueries(queries);
    fields._isAdvancedQuery = true;
    fields._wordsRestriction = wordsResctriction;
    fields._websiteRestriction = siteRestriction;
    fields._urlRegularExpression.reset();
    fields._combinedQueryList = queries;
    return makeQuery(std::move(fields));
}

QueryCorePtr QueryCore::initWithQueryFolder(const std::optional<QString>& name)
{
    QueryFields fields;
    fields._uuid = UUIDString();
    fields._isFolder = true;
    fields._query = name;
    return std::make_shared<QueryCore>(Private(), std::move(fields), InitialSortType, NotCounted);
}

QueryCorePtr QueryCore::fromArchive(QueryFields fields)
{
    return std::make_shared<QueryCore>(Private(), std::move(fields), 0, 0);
}

QueryCore::Snapshot QueryCore::snapshot() const
{
    const TreeLock lock;
    return {_fields, _parent.lock(), _childs, _sortType, _generation};
}

bool QueryCore::replaceResultsIfUnchanged(std::uint64_t generation, ResultList results, Date lastUpdate)
{
    const TreeLock lock;
    if (generation != _generation)
        return false;
    _fields._currentResult = std::move(results);
    _fields._lastUpdate = lastUpdate;
    touch();
    return true;
}

QString QueryCore::description() const
{
    const TreeLock lock;
    const QString absent = QStringLiteral("(null)");
    const QString address = QStringLiteral("0x%1").arg(reinterpret_cast<quintptr>(this), 0, 16);
    const QString updated = _fields._lastUpdate ? _fields._lastUpdate->description() : absent;
    const qsizetype count = _fields._currentResult ? _fields._currentResult->size() : 0;
    return QLatin1String("<QueryCore: ") % address % QLatin1String("> [") %
           QString::number(weak_from_this().use_count()) % QLatin1String("]\n") % _fields._query.value_or(absent) %
           QLatin1String(", last update: ") % updated % QLatin1String(". Number of Results: ") %
           QString::number(count) % QLatin1String(" (") % _fields._uuid % u')';
}

} // namespace quarry
