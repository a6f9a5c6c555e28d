#include "engines/QueryUpdate.h"

#include "engines/ServiceHealthText.h"
#include "model/TreeLock.h"

#include <algorithm>

namespace quarry {

namespace {

constexpr double SecondsBetweenUpdates = 900.0;
constexpr double SecondsOfDay = 86400.0;
constexpr qint64 TextInPage = 3; ///< Words restriction: the page itself must hold the text.

qint64 wordsRestriction(const QueryFields& query)
{
    return query._wordsRestriction.value_or(0);
}

bool hasWebsite(const QueryFields& query)
{
    return !query._websiteRestriction.value_or(QString()).isEmpty();
}

ServiceFacts factsOf(const FetchOutcome& outcome, const ServiceHealth& health)
{
    ServiceFacts facts;
    facts.results = outcome.records ? outcome.records->size() : 0;
    for (const PageFacts& page : outcome.pages) {
        ++facts.pages;
        facts.cachedPages += page.source == PageFacts::Source::Cache;
        if (page.source != PageFacts::Source::Nowhere)
            continue;
        ++facts.failedPages;
        if (facts.error.isEmpty())
            facts.error = page.error;
    }
    if (facts.failedPages == 0)
        facts.error = uselessPagesText(health);
    if (health.pages() > 0)
        facts.verdict = health.verdict();
    return facts;
}

} // namespace

QueryUpdate::QueryUpdate(const QueryUpdateParts& parts, QueryCorePtr node)
    : _parts(parts), _node(std::move(node)), _name{_node->UUID(), _node->title()},
      _fetcher(parts.fetching, _node->query(), _name.uuid)
{
}

UpdateFacts QueryUpdate::run()
{
    if (_parts.observer)
        _parts.observer->updateStarted(_name);
    _node->setUpdateCounters(0, 0, 0);
    UpdateFacts facts;
    if (_parts.fetching.pauser.isStopped()) {
        facts.end = UpdateEnd::Stopped;
    } else if (!begin()) {
        facts.end = UpdateEnd::Recent;
    } else {
        if (_query._combinedQueryList)
            fetchCombined();
        else
            fetchSingle();
        if (_stopped)
            facts.end = UpdateEnd::Stopped;
        else
            facts = merge();
    }
    end(facts);
    return facts;
}

/// Decides whether the services are asked at all.
bool QueryUpdate::begin()
{
    const TreeLock lock;
    _query = _node->snapshot().fields;
    _protectedText = _node->queryAmpersandProtected();
    if (!_query._combinedQueryList && isRecent() && !_node->queryChanged())
        return false;
    _node->takeQueryChanged();
    return true;
}

bool QueryUpdate::isRecent() const
{
    if (!_query._lastUpdate)
        return false;
    const double seconds = _parts.fetching.clock.now().secondsSince(*_query._lastUpdate);
    // A date far ahead comes from a clock that was wrong; waiting for it could take for ever.
    return seconds <= SecondsBetweenUpdates && seconds >= -SecondsOfDay;
}

void QueryUpdate::fetchSingle()
{
    const QString stored = _query._query.value_or(QString());
    for (const SearchService service : AllSearchServices) {
        ResultList& list = _lists[indexOf(service)];
        if (!_query._isAdvancedQuery)
            list = ask(service, fillSearchUrl(_parts.addresses.searchUrl(service, false), stored));
        else if (service == SearchService::Exalead)
            list = ask(service, advancedAddress(service, stored));
        else if (service != SearchService::Ixquick)
            list = ask(service, advancedAddress(service, _protectedText));
    }
    if (_query._isAdvancedQuery && wordsRestriction(_query) == TextInPage) {
        for (const SearchService service : AllSearchServices)
            restrict(_lists[indexOf(service)], stored);
    }
}

void QueryUpdate::fetchCombined()
{
    for (const QString& text : *_query._combinedQueryList)
        fetchMember(text);
}

void QueryUpdate::fetchMember(const QString& text)
{
    const bool website = hasWebsite(_query);
    ServiceLists lists;
    for (const SearchService service : AllSearchServices) {
        ResultList& list = lists[indexOf(service)];
        // The web site form of this one service carries the text of the whole query.
        if (service == SearchService::Bing && website)
            list = ask(service, advancedAddress(service, _query._query.value_or(QString())));
        else if (service != SearchService::Ixquick)
            list = ask(service, advancedAddress(service, text));
        else if (!website && wordsRestriction(_query) == 1)
            list = ask(service, fillSearchUrl(_parts.addresses.ixquickSearchUrl(true), text));
    }
    for (const SearchService service : AllSearchServices) {
        ResultList& list = lists[indexOf(service)];
        // Bing's results stay unrestricted here.
        if (!website && wordsRestriction(_query) == TextInPage && service != SearchService::Bing)
            restrict(list, text);
        _lists[indexOf(service)].append(list);
    }
}

QString QueryUpdate::advancedAddress(SearchService service, const QString& text) const
{
    const QString address = _parts.addresses.advancedSearchUrl(service, wordsRestriction(_query), hasWebsite(_query));
    return fillSearchUrl(address, text, _query._websiteRestriction.value_or(QString()));
}

ResultList QueryUpdate::ask(SearchService service, const QString& address)
{
    _stopped = _stopped || _parts.fetching.pauser.isStopped();
    if (_stopped || !_parts.addresses.services().isEnabled(service))
        return {};
    if (_parts.observer)
        _parts.observer->serviceAsked(_name, service);
    const FetchOutcome outcome = _fetcher.update(service, address);
    const ServiceHealth health = ServiceHealth::of(outcome.pages, _parts.fetching.pauser.isStopped());
    if (_parts.health)
        _parts.health->add(service, health);
    _stopped = _stopped || outcome.stopped;
    if (_stopped)
        return {};
    const ServiceFacts facts = factsOf(outcome, health);
    count(facts);
    if (_parts.observer)
        _parts.observer->serviceAnswered(_name, service, facts);
    return outcome.records.value_or(ResultList());
}

void QueryUpdate::count(const ServiceFacts& facts)
{
    _failed += facts.isFailure();
    _answered += facts.pages > 0 && !facts.isFailure();
}

void QueryUpdate::restrict(ResultList& records, const QString& text) const
{
    if (_parts.steps.restrictResults && !_stopped)
        records = _parts.steps.restrictResults(_query, records, text);
}

ResultList QueryUpdate::linksToMerge() const
{
    ResultList links = arrayWithUniqueItem(interleaved(_lists));
    const QString expression = _query._urlRegularExpression.value_or(QString());
    if (!expression.isEmpty() && _parts.steps.filterByUrl) {
        // A combined query's expression goes out inside this text.
        const QString pattern =
            _query._combinedQueryList ? QStringLiteral("SELF MATCHES \"") + expression + QLatin1Char('"') : expression;
        links = _parts.steps.filterByUrl(links, pattern);
    }
    if (_query._computeCheckSumOfLinks && _parts.steps.refreshChecksumOfItems)
        links = _parts.steps.refreshChecksumOfItems(links);
    return links;
}

UpdateFacts QueryUpdate::merge()
{
    const ResultList links = linksToMerge();
    UpdateFacts facts;
    if (_parts.fetching.pauser.isStopped()) {
        facts.end = UpdateEnd::Stopped;
        return facts;
    }
    const QueryCorePtr node = _parts.findQuery(_name.uuid);
    if (!node) {
        facts.end = UpdateEnd::Removed;
        return facts;
    }
    const Date now = _parts.fetching.clock.now();
    const SearchDefinition asked = SearchDefinition::of(_query);
    const MergeOutcome outcome = mergeIntoQuery(*node, asked, links, now, _parts.numberOfNewLinks, _parts.steps.merge);
    for (const QueryCorePtr& counted : {_node, node})
        counted->setUpdateCounters(outcome.added, outcome.blacklisted, outcome.excluded);
    if (_parts.journal)
        _parts.journal({_name.uuid, asked, links, now, node});
    facts.end = _failed > 0 && _answered == 0 ? UpdateEnd::Unreachable : UpdateEnd::Updated;
    facts.added = outcome.added;
    facts.excluded = outcome.excluded;
    facts.blacklisted = outcome.blacklisted;
    return facts;
}

void QueryUpdate::end(UpdateFacts& facts)
{
    _node->setUpdating(false);
    if (_parts.observer)
        _parts.observer->updateFinished(_name, facts);
    _parts.notifications.post(QStringLiteral("uptDidFinish"), _node);
    _parts.notifications.post(QStringLiteral("DBInternalUpdate"), _node);
}

} // namespace quarry
