// What a query looks for: its words, restrictions, switches and private filters.

#include "model/QueryCore.h"
#include "model/TreeLock.h"

namespace quarry {

namespace {

/// The text, or none when there is nothing in it.
std::optional<QString> unlessEmpty(const std::optional<QString>& text)
{
    return text && !text->isEmpty() ? text : std::nullopt;
}

bool isBlank(const std::optional<QString>& text)
{
    return !text || text->isEmpty();
}

} // namespace

QueryKind QueryCore::kind() const
{
    const TreeLock lock;
    if (_fields._isFolder)
        return QueryKind::Folder;
    if (isCombinedQuery())
        return QueryKind::Combined;
    return _fields._isAdvancedQuery ? QueryKind::Advanced : QueryKind::Plain;
}

QString QueryCore::query() const
{
    const TreeLock lock;
    return _fields._query.value_or(QString()).replace(u'+', u' ');
}

std::optional<QString> QueryCore::storedQuery() const
{
    const TreeLock lock;
    return _fields._query;
}

QString QueryCore::queryAmpersandProtected() const
{
    return query().replace(u'&', QLatin1String("_&&&&&_"));
}

QString QueryCore::title() const
{
    const TreeLock lock;
    return _fields._title ? *_fields._title : query();
}

QString QueryCore::highlight() const
{
    const TreeLock lock;
    return _fields._highlightString ? *_fields._highlightString : query();
}

void QueryCore::setQuery(const std::optional<QString>& query)
{
    if (!query)
        return;
    const TreeLock lock;
    _fields._query = query;
    if (_fields._currentResult)
        _fields._currentResult->clear();
    _fields._lastUpdate = Date::reference();
    touch();
}

void QueryCore::setTitle(const std::optional<QString>& title)
{
    const TreeLock lock;
    _fields._title = unlessEmpty(title);
    touch();
}

void QueryCore::setHighlight(const std::optional<QString>& highlight)
{
    const TreeLock lock;
    _fields._highlightString = unlessEmpty(highlight);
    touch();
}

void QueryCore::setSearchString(const std::optional<QString>& searchString)
{
    const TreeLock lock;
    _searchString = searchString;
}

void QueryCore::setMustHighlight(bool highlight)
{
    const TreeLock lock;
    _fields._highlightState = highlight;
    touch();
}

bool QueryCore::isHighlightActive() const
{
    const TreeLock lock;
    return _fields._highlightState;
}

void QueryCore::setEnabled(bool enabled)
{
    const TreeLock lock;
    _fields._queryDisabled = !enabled;
    touch();
}

bool QueryCore::isEnabled() const
{
    const TreeLock lock;
    return !_fields._queryDisabled;
}

void QueryCore::setCheckBlacklist(bool check)
{
    const TreeLock lock;
    _fields._isSuscribedToBlacklist = check;
    touch();
}

bool QueryCore::isCheckingBlacklist() const
{
    const TreeLock lock;
    return _fields._isSuscribedToBlacklist;
}

void QueryCore::setComputeChecksum(bool compute)
{
    const TreeLock lock;
    _fields._computeCheckSumOfLinks = compute;
    touch();
}

bool QueryCore::isComputingChecksum() const
{
    const TreeLock lock;
    return _fields._computeCheckSumOfLinks;
}

QString QueryCore::UUID() const
{
    return _fields._uuid; // Never changes, so it is read without the lock.
}

std::optional<Date> QueryCore::date() const
{
    const TreeLock lock;
    return _fields._lastUpdate;
}

bool QueryCore::isAdvancedQuery() const
{
    const TreeLock lock;
    return _fields._isAdvancedQuery;
}

bool QueryCore::isCombinedQuery() const
{
    const TreeLock lock;
    return _fields._combinedQueryList && !_fields._combinedQueryList->isEmpty();
}

std::optional<QStringList> QueryCore::combinedQueries() const
{
    const TreeLock lock;
    return _fields._combinedQueryList;
}

QString QueryCore::websiteRestriction() const
{
    const TreeLock lock;
    return _fields._isAdvancedQuery ? _fields._websiteRestriction.value_or(QString()) : QString();
}

QString QueryCore::urlRegularExpressions() const
{
    const TreeLock lock;
    return _fields._isAdvancedQuery ? _fields._urlRegularExpression.value_or(QString()) : QString();
}

std::optional<qint64> QueryCore::wordsRestriction() const
{
    const TreeLock lock;
    return _fields._isAdvancedQuery ? _fields._wordsRestriction : std::optional<qint64>(1);
}

qint64 QueryCore::searchType() const
{
    const TreeLock lock;
    return _fields._wordsRestriction.value_or(0);
}

void QueryCore::changeWithQuery(const std::optional<QString>& query, qint64 wordsResctriction,
                                const std::optional<QString>& siteRestriction,
                                const std::optional<QString>& urlRegularExpression)
{
    const TreeLock lock;
    touch();
    _queryChanged = true;
    _fields._isAdvancedQuery = true;
    if (isBlank(query))
        return;
    _updating = false;
    if (wordsResctriction == 1 && isBlank(siteRestriction) && isBlank(urlRegularExpression))
        _fields._isAdvancedQuery = false;
    const QString expression = urlRegularExpression.value_or(QString());
    if (this->query() == *query && _fields._websiteRestriction == siteRestriction &&
        searchType() == wordsResctriction && _fields._urlRegularExpression == expression)
        return;
    _fields._query = QString(*query).replace(u' ', u'+');
    storeRestrictions(wordsResctriction, siteRestriction, expression);
}

void QueryCore::changeWithCombinedQuery(const QStringList& queries, qint64 wordsResctriction,
                                        const std::optional<QString>& siteRestriction,
                                        const std::optional<QString>& urlRegularExpression)
{
    const TreeLock lock;
    touch();
    _queryChanged = true;
    _fields._isAdvancedQuery = true;
    if (queries.isEmpty())
        return;
    _updating = false;
    // The joined text stays as it was made at creation: other programs of the product show it as the query's name.
    _fields._combinedQueryList = queries;
    storeRestrictions(wordsResctriction, siteRestriction, urlRegularExpression.value_or(QString()));
}

void QueryCore::storeRestrictions(qint64 wordsResctriction, const std::optional<QString>& siteRestriction,
                                  const QString& urlRegularExpression)
{
    _fields._wordsRestriction = wordsResctriction;
    _fields._websiteRestriction = siteRestriction;
    _fields._urlRegularExpression = urlRegularExpression;
}

void QueryCore::addFilter(const FilterObject& filter)
{
    if (!filter)
        return;
    const TreeLock lock;
    if (!_fields._urlFilters)
        _fields._urlFilters.emplace();
    _fields._urlFilters->append(filter);
    touch();
}

void QueryCore::replaceFilter(const FilterObject& oldFilter, const FilterObject& newFilter)
{
    const TreeLock lock;
    removeFilter(oldFilter);
    addFilter(newFilter);
}

void QueryCore::removeFilter(const FilterObject& filter)
{
    const TreeLock lock;
    if (_fields._urlFilters && filter && _fields._urlFilters->removeAll(filter) > 0)
        touch();
}

std::optional<QList<FilterObject>> QueryCore::filters() const
{
    const TreeLock lock;
    return _fields._urlFilters;
}

} // namespace quarry
