#include "engines/ServiceFetcher.h"

#include "engines/PageCache.h"
#include "engines/PageExtraction.h"
#include "engines/PageSigns.h"

#include <algorithm>

namespace quarry {

namespace {

using std::chrono::milliseconds;

constexpr qint64 PageSize = 10;
/// No service shows that many results. A mistyped preference must not keep a refresh busy for days.
constexpr qint64 MaximumResults = 10000;

/// How each service is asked. What is read out of its pages: PageExtraction.cpp.
struct AskingRules {
    milliseconds pauseBeforePage; ///< Cached or not.
    milliseconds pauseAfterFetch;
    bool ampersandMarkers; ///< The address may hold "_&&&&&_" for an ampersand of the query.
    bool needsAddress;     ///< Refuses to run without an address.
};

constexpr AskingRules GoogleRules = {milliseconds(0), milliseconds(500), true, true};
constexpr AskingRules YahooRules = {milliseconds(100), milliseconds(0), true, false};
constexpr AskingRules BingRules = {milliseconds(100), milliseconds(0), true, false};
constexpr AskingRules IxquickRules = {milliseconds(100), milliseconds(0), false, false};

/// One run over the pages of one service.
class ServiceRun final {
public:
    ServiceRun(const ServiceFetcher::Parts& parts, SearchService service, const AskingRules& rules, QString address,
               const QString& queryUuid)
        : _parts(parts), _service(service), _rules(rules), _address(std::move(address)),
          _cache(parts.files, parts.cachesFolder, queryUuid, parts.clock.now()),
          _placeholders{parts.lookup(QStringLiteral("100_No description")),
                        parts.lookup(QStringLiteral("122_PDF Extract"))}
    {
    }

    FetchOutcome run()
    {
        _outcome.records.emplace();
        const qint64 limit = std::min(_parts.resultsPerEngine, MaximumResults);
        for (qint64 start = 0; start < limit && !_outcome.stopped; start += PageSize) {
            _outcome.stopped = _parts.pauser.isStopped() || !pause(_rules.pauseBeforePage);
            if (!_outcome.stopped)
                askPage(start);
        }
        _cache.close(_parts.clock.now());
        return std::move(_outcome);
    }

private:
    bool pause(milliseconds duration) { return duration.count() == 0 || _parts.pauser.pause(duration); }

    void askPage(qint64 start)
    {
        PageFacts facts;
        facts.start = start;
        facts.address = finishedSearchUrl(_address, start, _rules.ampersandMarkers);
        if (auto page = pageFor(facts))
            takeResults(*std::move(page), facts);
        _outcome.pages.append(facts);
    }

    std::optional<DecodedPage> pageFor(PageFacts& facts)
    {
        const auto url = Url::fromText(facts.address);
        if (!url) {
            facts.error = QStringLiteral("no valid address");
            return std::nullopt;
        }
        facts.address = url->absoluteString();
        if (auto cached = _cache.page(facts.address)) {
            facts.source = PageFacts::Source::Cache;
            facts.bytes = cached->text.size();
            return cached;
        }
        return fetch(*url, facts);
    }

    std::optional<DecodedPage> fetch(const Url& url, PageFacts& facts)
    {
        const LoadedPage loaded = _parts.loader.load(url.requestBytes());
        // The page is there; a stop takes effect before the next one.
        _outcome.stopped = !pause(_rules.pauseAfterFetch);
        facts.httpStatus = loaded.httpStatus;
        facts.seconds = loaded.seconds;
        facts.error = loaded.error;
        facts.bytes = loaded.bytes.size();
        if (!loaded.ok()) {
            if (!loaded.errorBody.isEmpty())
                facts.sign = signOfRefusal(decodeResultPage(loaded.errorBody, loaded.contentType).text, facts.address);
            return std::nullopt;
        }
        facts.source = PageFacts::Source::Network;
        DecodedPage page = decodeResultPage(loaded.bytes, loaded.contentType);
        _cache.store(facts.address, page);
        return page;
    }

    void takeResults(DecodedPage page, PageFacts& facts)
    {
        const ExtractedPage extracted = extractPage(_service, std::move(page), facts.start, _placeholders);
        facts.hasResultsArea = extracted.hasResultsArea;
        facts.items = extracted.items;
        for (const FoundLink& link : extracted.links) {
            // A link without a title uses up its rank.
            ++_rank;
            if (link.title.isEmpty())
                continue;
            _outcome.records->append(resultRecord(_service, link, _rank, _parts.clock.now()));
            ++facts.results;
        }
        if (facts.results == 0)
            facts.sign = signOf(extracted, facts.address);
    }

    static PageSign signOf(const ExtractedPage& page, const QString& address)
    {
        const PageSign said = page.text ? signOfPage(page.text->text(), address) : PageSign::Nothing;
        if (said == PageSign::Challenge && page.items > 0)
            return PageSign::Nothing;
        return said == PageSign::Nothing && page.hasEmptyArea ? PageSign::NoResults : said;
    }

    const ServiceFetcher::Parts& _parts;
    SearchService _service;
    const AskingRules& _rules;
    QString _address;
    PageCache _cache;
    DescriptionPlaceholders _placeholders;
    qint64 _rank = 0;
    FetchOutcome _outcome;
};

const AskingRules* rulesOf(SearchService service)
{
    switch (service) {
    case SearchService::Google:
        return &GoogleRules;
    case SearchService::Yahoo:
        return &YahooRules;
    case SearchService::Bing:
        return &BingRules;
    case SearchService::Ixquick:
        return &IxquickRules;
    case SearchService::Exalead:
        break;
    }
    return nullptr;
}

} // namespace

ResultRecord resultRecord(SearchService service, const FoundLink& link, qint64 rank, Date found)
{
    return ResultRecord()
        .withEngineId(searchServiceIdentifier(service))
        .withRank(rank)
        .withTitle(link.title)
        .withUrl(link.url)
        .withTextFromPage(link.description)
        .withDateOfFind(found)
        .withChecksum(QString(QLatin1String("")))
        .withUserSaw(false);
}

ServiceFetcher::ServiceFetcher(Parts parts, QString query, QString queryUuid)
    : _parts(std::move(parts)), _query(std::move(query)), _queryUuid(std::move(queryUuid))
{
}

FetchOutcome ServiceFetcher::updateGoogle(const QString& address)
{
    return update(SearchService::Google, address);
}

FetchOutcome ServiceFetcher::updateYahoo(const QString& address)
{
    return update(SearchService::Yahoo, address);
}

FetchOutcome ServiceFetcher::updateBing(const QString& address)
{
    return update(SearchService::Bing, address);
}

FetchOutcome ServiceFetcher::updateExalead(const QString& address)
{
    return update(SearchService::Exalead, address);
}

FetchOutcome ServiceFetcher::updateIxquick(const QString& address)
{
    return update(SearchService::Ixquick, address);
}

FetchOutcome ServiceFetcher::update(SearchService service, const QString& address)
{
    const AskingRules* rules = rulesOf(service);
    if (rules == nullptr || _query.isEmpty() || (rules->needsAddress && address.isEmpty()))
        return {};
    return ServiceRun(_parts, service, *rules, address, _queryUuid).run();
}

} // namespace quarry
