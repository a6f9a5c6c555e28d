// What an update brings merged into what a query has: 200 links into 100 known ones a thousand times, and into 100,000.
// Beside it the plain ways of telling known links: each pair compared, and a hash table of whole addresses, which
// knows less but is as fast as it gets. All sides must add the same links; medians of several runs are printed.

#include "Times.h"
#include "engines/ResultMerge.h"
#include "text/Url.h"
#include "text/Uuid.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

using namespace quarry;
using bench::Times;

constexpr int Runs = 9;
constexpr int Incoming = 200;

QString address(int page, int query)
{
    return QStringLiteral("http://www.site%1.example/articles/2026/page-%2.html?visit=%3")
        .arg(page % 97)
        .arg(page)
        .arg(query);
}

ResultRecord found(int page, int query, int rank)
{
    return ResultRecord()
        .withUrl(Url::fromText(address(page, query)).value())
        .withTitle(QStringLiteral("The title of page %1").arg(page))
        .withTextFromPage(
            QStringLiteral("What a service shows of the text of page %1, about two lines of it.").arg(page))
        .withEngineId(QStringLiteral("1"))
        .withChecksum(QString())
        .withDateOfFind(Date(800000000.0))
        .withUserSaw(false)
        .withRank(rank);
}

/// A query as it is after its last merge.
QueryFields queryWith(int known)
{
    QueryFields query;
    query._uuid = UUIDString();
    ResultList results;
    for (int page = 0; page < known; ++page)
        results.append(found(page, 0, 1 + page % 40)
                           .withNewSincePrevious(false)
                           .withRating(0)
                           .withVisible(true)
                           .withParentQueryUuid(query._uuid)
                           .withLinkUuid(UUIDString()));
    query._currentResult = results;
    query._currentResult = compareWithKnownLinks(query, {}, true, {Date(800000000.0), 3, 0}).results;
    return query;
}

/// Every second link is known, under another visit number; spread over all that are known.
ResultList incomingLinks(int known, int count)
{
    ResultList links;
    for (int i = 0; i < count; ++i) {
        const int page = i % 2 == 0 ? static_cast<int>(qint64(i) * known / count) : known + i;
        links.append(found(page, 1, 1 + i % 40));
    }
    return links;
}

struct Split {
    std::string text, host, path;
    explicit Split(const ResultRecord& record)
    {
        const Url url = record.url().value();
        text = url.absoluteString().toStdString();
        host = url.host().toString().toStdString();
        path = url.path().toString().toStdString();
    }
};

/// Split beforehand, and only counted: nothing is stamped, appended or sorted.
class Pairwise final {
public:
    Pairwise(const QueryFields& query, const ResultList& links)
        : _known(query._currentResult->begin(), query._currentResult->end()), _links(links.begin(), links.end())
    {
    }
    [[nodiscard]] qint64 run() const
    {
        std::vector<const Split*> known;
        for (const Split& each : _known)
            known.push_back(&each);
        for (const Split& link : _links) {
            if (std::none_of(known.begin(), known.end(), [&](const Split* each) { return isSame(link, *each); }))
                known.push_back(&link);
        }
        return static_cast<qint64>(known.size() - _known.size());
    }

private:
    static bool isSame(const Split& a, const Split& b)
    {
        if (a.text == b.text)
            return true;
        const bool samePath =
            a.path == b.path || (a.path.empty() && b.path == "/") || (a.path == "/" && b.path.empty());
        return !a.host.empty() && a.host == b.host && samePath;
    }

    std::vector<Split> _known, _links;
};

/// The floor: look-ups of whole texts that lie ready, in a table made beforehand.
class WholeAddresses final {
public:
    WholeAddresses(const QueryFields& query, const ResultList& links)
    {
        for (const ResultRecord& record : *query._currentResult)
            _known.emplace(record.urlText()->toStdString(), 0);
        for (const ResultRecord& link : links)
            _links.push_back(link.urlText()->toStdString());
    }
    [[nodiscard]] qint64 run() const
    {
        return std::count_if(_links.begin(), _links.end(),
                             [&](const std::string& link) { return _known.count(link) == 0; });
    }

private:
    std::unordered_map<std::string, int> _known;
    std::vector<std::string> _links;
};

qint64 merged(const QueryFields& query, const ResultList& links)
{
    return compareWithKnownLinks(query, links, true, {Date(800000000.0), 3, 0}).added;
}

void print(const char* what, const Times& times, double links)
{
    std::printf("  %-44s %8.2f million/s (best %8.2f)  %7.1f ns each\n", what, links / times.median() / 1e6,
                links / times.best() / 1e6, times.median() / links * 1e9);
}

bool isSame(const char* what, qint64 added, qint64 expected)
{
    if (added != expected)
        std::printf("%s: %lld added instead of %lld\n", what, static_cast<long long>(added),
                    static_cast<long long>(expected));
    return added == expected;
}

bool intoFew()
{
    constexpr int Known = 100;
    constexpr int Times1000 = 1000;
    const QueryFields query = queryWith(Known);
    const ResultList links = incomingLinks(Known, Incoming);
    const Pairwise pairwise(query, links);
    if (!isSame("into 100", merged(query, links), pairwise.run()))
        return false;
    qint64 sum = 0;
    const auto thousand = [&](const auto& once) {
        return Times(Runs, [&] {
            for (int i = 0; i < Times1000; ++i)
                sum += once();
        });
    };
    const Times ours = thousand([&] { return merged(query, links); });
    const Times pairs = thousand([&] { return pairwise.run(); });
    const double count = double(Incoming) * Times1000;
    std::printf("%d links into %d known ones, %d times (%lld added each)\n", Incoming, Known, Times1000,
                static_cast<long long>(merged(query, links)));
    print("merge, incoming links", ours, count);
    print("each pair compared, nothing else", pairs, count);
    std::printf("  the merge does %.2f times as many\n", pairs.median() / ours.median());
    return sum > 0;
}

bool intoMany()
{
    constexpr int Known = 100000;
    constexpr int Many = 20000;
    const QueryFields query = queryWith(Known);
    const ResultList links = incomingLinks(Known, Incoming);
    const ResultList many = incomingLinks(Known, Many);
    const WholeAddresses whole(query, many);
    if (!isSame("into 100,000", merged(query, links), Incoming / 2) || !isSame("many", merged(query, many), Many / 2))
        return false;
    qint64 sum = 0;
    const Times none(Runs, [&] { sum += merged(query, {}); });
    const Times few(Runs, [&] { sum += merged(query, links); });
    const Times ours(Runs, [&] { sum += merged(query, many); });
    const Times floor(Runs, [&] { sum += whole.run(); });
    std::printf("into %d known ones\n", Known);
    print("0 links, known ones looked at", none, Known);
    print("200 links, known and incoming", few, Known + Incoming);
    print("20,000 links, known and incoming", ours, Known + Many);
    print("hash table of whole addresses, look-ups", floor, Many);
    std::printf("  an incoming link more costs %.1f ns (from 200 to 20,000)\n",
                (ours.median() - few.median()) / (Many - Incoming) * 1e9);
    return sum > 0;
}

} // namespace

int main()
{
    const bool few = intoFew();
    return intoMany() && few ? 0 : 1;
}
