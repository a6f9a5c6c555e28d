#include "engines/ServiceHealth.h"

#include <algorithm>
#include <numeric>

namespace quarry {

namespace {

constexpr int FirstErrorStatus = 400;

bool isRefusal(int httpStatus)
{
    constexpr int Forbidden = 403;
    constexpr int TooManyRequests = 429;
    return httpStatus == Forbidden || httpStatus == TooManyRequests;
}

/// A stop kept it from coming; what had been answered by then is an answer.
bool isCutShort(const PageFacts& page)
{
    return page.source == PageFacts::Source::Nowhere && page.httpStatus < FirstErrorStatus;
}

} // namespace

ServiceVerdict verdictOn(const PageFacts& page)
{
    if (page.results > 0)
        return ServiceVerdict::Results;
    if (isRefusal(page.httpStatus) || page.sign == PageSign::Challenge)
        return ServiceVerdict::Blocked;
    if (page.source == PageFacts::Source::Nowhere)
        return ServiceVerdict::Unreachable;
    return page.sign == PageSign::NoResults ? ServiceVerdict::NothingFound : ServiceVerdict::NotRecognised;
}

ServiceHealth ServiceHealth::of(const PageFacts& page)
{
    ServiceHealth health;
    if (page.source == PageFacts::Source::Cache) {
        health.cachedPages = 1;
    } else {
        health.bytes = page.bytes;
        health.seconds = page.seconds;
        if (page.httpStatus != 0)
            health.statuses.insert(page.httpStatus, 1);
    }
    health.results = page.results;
    health.judgedAs(verdictOn(page)) = {1, page.error};
    return health;
}

ServiceHealth ServiceHealth::of(const QList<PageFacts>& pages, bool isBrokenOff)
{
    ServiceHealth health;
    for (const PageFacts& page : pages) {
        if (!isBrokenOff || !isCutShort(page))
            health += of(page);
    }
    return health;
}

ServiceHealth& ServiceHealth::operator+=(const ServiceHealth& other)
{
    cachedPages += other.cachedPages;
    for (auto status = other.statuses.begin(); status != other.statuses.end(); ++status)
        statuses[status.key()] += status.value();
    bytes += other.bytes;
    seconds += other.seconds;
    results += other.results;
    for (const ServiceVerdict verdict : AllServiceVerdicts) {
        Judged& mine = judgedAs(verdict);
        const Judged& others = other.judgedAs(verdict);
        mine.pages += others.pages;
        if (mine.error.isEmpty())
            mine.error = others.error;
    }
    return *this;
}

int ServiceHealth::pages() const
{
    return std::accumulate(judged.begin(), judged.end(), 0,
                           [](int sum, const Judged& some) { return sum + some.pages; });
}

int ServiceHealth::pagesMissed() const
{
    return pages() - judgedAs(ServiceVerdict::Results).pages - judgedAs(ServiceVerdict::NothingFound).pages;
}

ServiceVerdict ServiceHealth::verdict() const
{
    constexpr std::array FirstThatHolds = {ServiceVerdict::Blocked, ServiceVerdict::Results,
                                           ServiceVerdict::NotRecognised, ServiceVerdict::Unreachable};
    const auto* const found = std::find_if(FirstThatHolds.begin(), FirstThatHolds.end(),
                                           [this](ServiceVerdict verdict) { return judgedAs(verdict).pages > 0; });
    return found == FirstThatHolds.end() ? ServiceVerdict::NothingFound : *found;
}

} // namespace quarry
