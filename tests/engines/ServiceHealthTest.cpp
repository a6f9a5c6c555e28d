// How pages are judged, and what the pages of a run come to together.

#include "engines/RunHealth.h"
#include "engines/ServiceFetcher.h"
#include "engines/ServiceHealthText.h"
#include "support/FakePageLoader.h"
#include "support/RecordingPauser.h"
#include "support/ServicePages.h"
#include "support/SettableClock.h"
#include "support/TemporaryHome.h"

#include <gtest/gtest.h>

#include <thread>

namespace quarry {
namespace {

using enum SearchService;
using enum ServiceVerdict;

struct Reply {
    const char* name;
    SearchService service;
    ServiceVerdict verdict;
    LoadedPage page;
    QString query = u"sextant"_qs;
};

LoadedPage ok(const QByteArray& body)
{
    return test::FakePageLoader::page(body);
}

LoadedPage refusal(int status, const QByteArray& body = "<html><body>Sorry.</body></html>")
{
    LoadedPage page = test::FakePageLoader::failure(u"HTTP status %1"_qs.arg(status), status);
    page.errorBody = body;
    return page;
}

LoadedPage fixture(const char* name)
{
    const QByteArray page =
        test::contentOf(QStringLiteral(QUARRY_TEST_DATA "/pages/") + QLatin1String(name) + QStringLiteral(".html"));
    EXPECT_FALSE(page.isEmpty()) << name;
    return ok(page);
}

/// What becomes of one page of a service that answers in that way.
PageFacts factsOf(const Reply& reply)
{
    test::FakePageLoader loader([&](const QByteArray&) { return reply.page; });
    test::RecordingPauser pauser;
    const test::SettableClock clock;
    DiskFileStore files;
    ServiceFetcher fetcher({loader, pauser, clock, files, [](const QString& key) { return key; }, QString(), 1},
                           reply.query, u"uuid"_qs);
    const FetchOutcome outcome = fetcher.update(reply.service, u"http://h/?s=^start_&q="_qs + reply.query);
    EXPECT_EQ(outcome.pages.size(), 1) << reply.name;
    return outcome.pages.value(0);
}

TEST(ServiceHealth, EachPageIsJudgedByWhatItShows)
{
    const QByteArray result = "<li class=\"g\"><h3 class=\"r\"><a href=\"http://h/\">T</a></h3></li>";
    const Reply replies[] = {
        {"results, Google", Google, Results, fixture("google-good")},
        {"results, Yahoo", Yahoo, Results, fixture("yahoo-good")},
        {"results, Bing", Bing, Results, fixture("bing-good")},
        {"results, Ixquick", Ixquick, Results, fixture("ixquick-good")},
        {"results whatever is said beside", Google, Results,
         ok("<form class=\"g-recaptcha\"></form>No results found for x. <div id=\"res\">" + result + "</div>")},
        {"other layout, Google", Google, NotRecognised, fixture("google-no-area")},
        {"other layout, Yahoo", Yahoo, NotRecognised, fixture("yahoo-no-area")},
        {"other layout, Bing", Bing, NotRecognised, fixture("bing-no-area")},
        {"other layout, Ixquick", Ixquick, NotRecognised, ok("<div class=\"hit\"><a href=\"http://h/\">T</a></div>")},
        {"the area, but other items in it", Google, NotRecognised,
         ok("<div id=\"res\"><div class=\"hit\"><a href=\"http://h/\">T</a></div></div>")},
        {"items, but nothing in them", Google, NotRecognised,
         ok("<div id=\"res\"><li class=\"g\"><h4>T</h4></li></div><p>Not a robot.</p>")},
        {"nothing at all", Bing, NotRecognised, ok("")},
        {"phrase over line ends and tags", Google, NothingFound,
         ok("<body>Your search - <b>x</b> - did\n not match <i>any</i>\tdocuments.</body>")},
        {"phrase in French, with entities", Yahoo, NothingFound, ok("<body>Aucun r&eacute;sultat pour x</body>")},
        {"phrase in German", Bing, NothingFound, ok("<body><p>Es wurden keine ERGEBNISSE gefunden</p></body>")},
        {"phrase in a script only", Bing, NotRecognised,
         ok("<body><script>t('No results found')</script><p>Hi</p></body>")},
        {"phrase beside a challenge for something else", Ixquick, NothingFound,
         ok("<body>Sorry, no results found<form id=\"captcha\"></form></body>")},
        {"phrase is the query", Bing, NotRecognised, ok("<body><h1>no results found</h1></body>"),
         u"no+results+found"_qs},
        {"an empty list", Google, NothingFound, ok("<div id=\"res\"><ol></ol></div>")},
        {"an empty list, Bing", Bing, NothingFound, ok("<div id=\"results_container\"></div>")},
        {"forbidden", Google, Blocked, refusal(403)},
        {"too many requests", Ixquick, Blocked, refusal(429)},
        {"busy", Yahoo, Unreachable, refusal(503)},
        {"busy with a challenge", Yahoo, Blocked, refusal(503, "<script src=\"/challenge-platform/x.js\"></script>")},
        {"gone", Yahoo, Unreachable, refusal(404)},
        {"challenge in the markup", Bing, Blocked, ok("<body><div class=\"g-recaptcha\"></div></body>")},
        {"challenge in words", Google, Blocked, ok("<body>We have detected unusual\ntraffic from your network</body>")},
        {"challenge is the query", Google, NotRecognised, ok("<body>recaptcha</body>"), u"reCaptcha"_qs},
        {"no reply", Bing, Unreachable, test::FakePageLoader::failure(u"connection refused"_qs)},
    };
    for (const Reply& reply : replies)
        EXPECT_EQ(verdictName(verdictOn(factsOf(reply))), verdictName(reply.verdict)) << reply.name;
}

PageFacts page(ServiceVerdict verdict)
{
    PageFacts facts;
    facts.source = verdict == Unreachable ? PageFacts::Source::Nowhere : PageFacts::Source::Network;
    facts.httpStatus = verdict == Blocked ? 429 : verdict == Unreachable ? 0 : 200;
    facts.error = verdict == Blocked ? u"HTTP status 429"_qs : verdict == Unreachable ? u"timed out"_qs : QString();
    facts.sign = verdict == NothingFound ? PageSign::NoResults : PageSign::Nothing;
    facts.results = verdict == Results ? 7 : 0;
    facts.bytes = 100;
    facts.seconds = 0.5;
    return facts;
}

TEST(ServiceHealth, ARunIsJudgedByAllItsPages)
{
    const std::tuple<QList<ServiceVerdict>, ServiceVerdict, QString> cases[] = {
        {{Results, NothingFound}, Results, u"results"_qs},
        {{Results, Results, NotRecognised, Unreachable}, Results, u"results (2 of 4 pages could not be read)"_qs},
        {{Results, Blocked, Unreachable}, Blocked, u"blocked (HTTP status 429; 1 of 3 pages)"_qs},
        {{NothingFound, NotRecognised, Unreachable}, NotRecognised, u"layout not recognised (1 of 3 pages)"_qs},
        {{NothingFound, Unreachable}, Unreachable, u"unreachable (timed out; 1 of 2 pages)"_qs},
        {{NothingFound, NothingFound}, NothingFound, u"nothing found"_qs},
    };
    for (const auto& [verdicts, verdict, text] : cases) {
        QList<PageFacts> pages;
        for (const ServiceVerdict each : verdicts)
            pages.append(page(each));
        const ServiceHealth health = ServiceHealth::of(pages);
        EXPECT_EQ(health.verdict(), verdict) << qPrintable(text);
        EXPECT_EQ(healthText(health), text);
        EXPECT_EQ(health.pages(), pages.size());
        EXPECT_EQ(health.results, 7 * verdicts.count(Results));
    }
}

TEST(ServiceHealth, PagesThatAStopKeptFromComingAreNotHeldAgainstAService)
{
    const ServiceHealth stopped = ServiceHealth::of({page(Results), page(Blocked), page(Unreachable)}, true);
    EXPECT_EQ(stopped.pages(), 2);
    EXPECT_EQ(stopped.judgedAs(Unreachable).pages, 0);
    EXPECT_EQ(stopped.statuses, (QMap<int, int>{{200, 1}, {429, 1}}));
}

TEST(ServiceHealth, ManyUpdatesAddUpAtOnce)
{
    constexpr int Threads = 20;
    constexpr int Times = 50;
    PageFacts cached = page(Results);
    cached.source = PageFacts::Source::Cache;
    const ServiceHealth once = ServiceHealth::of({page(Results), page(Blocked), cached});
    RunHealth run;
    std::vector<std::thread> threads;
    for (int i = 0; i < Threads; ++i)
        threads.emplace_back([&] {
            for (int time = 0; time < Times; ++time)
                run.add(time % 2 == 0 ? Google : Bing, once);
            run.add(Yahoo, {});
        });
    for (std::thread& thread : threads)
        thread.join();
    const HealthByService services = run.services();
    EXPECT_EQ(services.keys(), QList({Google, Bing})) << "one that was asked for no page was not asked";
    const ServiceHealth& google = *services.find(Google);
    constexpr int Added = Threads * Times / 2;
    EXPECT_EQ(google.pages(), 3 * Added);
    EXPECT_EQ(google.cachedPages, Added);
    EXPECT_EQ(google.results, 14 * Added);
    EXPECT_EQ(google.bytes, 200 * Added) << "the cache costs no network";
    EXPECT_DOUBLE_EQ(google.seconds, Added);
    EXPECT_EQ(google.statuses, (QMap<int, int>{{200, Added}, {429, Added}}));
    EXPECT_EQ(healthSummary(services), u"Google, Bing: blocked (HTTP status 429; 500 of 1500 pages)"_qs);
}

} // namespace
} // namespace quarry
