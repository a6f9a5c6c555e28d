#include "engines/QueryUpdate.h"

#include "engines/Records.h"
#include "engines/UpdateRig.h"
#include "engines/UrlFilter.h"

#include <gtest/gtest.h>

namespace quarry {
namespace {

using test::UpdateRig;
using enum SearchService;

QueryCorePtr plain(const QString& text)
{
    return QueryCore::initWithQuery(text);
}

QueryCorePtr advanced(const QString& text, qint64 words, const QString& website = QString())
{
    return QueryCore::initWithAdvancedQuery(text, words, website, QString());
}

QueryCorePtr combined(const QStringList& texts, qint64 words, const QString& website = QString())
{
    return QueryCore::initWithAdvancedCombinedQuery(texts, words, website);
}

TEST(QueryUpdate, AsksTheServicesThatTheKindOfQueryCallsForWithItsText)
{
    // A name, the query, and the end of each address asked for, in order.
    using Case = std::tuple<const char*, QueryCorePtr, QByteArrayList>;
    const Case cases[] = {
        {"plain",
         plain(u"a b&c"_qs),
         {"&q=a+b&c", "&p=a+b&c", "q=a+b&c&setmkt=xx&go=&filt=all&first=0", "&query=a+b&c"}},
        {"nothing to search", QueryCore::init(), {}},
        {"words", advanced(u"a b&c"_qs, 1), {"&q=a%20b%26c", "&p=a%20b%26c", "&q=a%20b%26c"}},
        {"phrase", advanced(u"a b"_qs, 2), {"&q=%22a%20b%22", "&p=%22a%20b%22", "&q=%22a%20b%22"}},
        {"no mode", advanced(u"a"_qs, 0), {"&start=0", "&b=0", "&first=0"}},
        {"website",
         advanced(u"a b"_qs, 2, u"w.org"_qs),
         {"&q=%22a%20b%22&as_sitesearch=w.org", "&p=%22a%20b%22&vs=w.org", "&first=0&q=a%20b+site:w.org"}},
        {"combined",
         combined({u"a b"_qs, u"c+d"_qs}, 1),
         {"&q=a%20b", "&p=a%20b", "&q=a%20b", "&query=a%20b", "&q=c+d", "&p=c+d", "&q=c+d", "&query=c+d"}},
        {"combined phrase", combined({u"a"_qs}, 2), {"&q=%22a%22", "&p=%22a%22", "&q=%22a%22"}},
        {"combined website",
         combined({u"a"_qs, u"b"_qs}, 1, u"w.org"_qs),
         {"&q=a&as_sitesearch=w.org", "&p=a&vs=w.org", "&q=%20a%20b+site:w.org", "&q=b&as_sitesearch=w.org",
          "&p=b&vs=w.org", "&q=%20a%20b+site:w.org"}},
    };
    const std::array inOrder = {Google, Yahoo, Bing, Ixquick};
    for (const auto& [name, node, ends] : cases) {
        UpdateRig rig;
        rig.update(rig.add(node));
        const std::vector<QByteArray> requests = rig.loader.requests();
        ASSERT_EQ(requests.size(), static_cast<std::size_t>(ends.size())) << name;
        for (qsizetype i = 0; i < ends.size(); ++i) {
            const QByteArray& request = requests[static_cast<std::size_t>(i)];
            EXPECT_TRUE(request.endsWith(ends[i])) << name << ": " << request.constData();
            const bool asksIxquick = ends.contains("&query=a%20b") || node->kind() == QueryKind::Plain;
            EXPECT_EQ(test::serviceOf(request), inOrder[static_cast<std::size_t>(i) % (asksIxquick ? 4U : 3U)]) << name;
        }
        EXPECT_EQ(node->date(), rig.clock.now()) << name;
    }
}

TEST(QueryUpdate, LeavesASingleQueryAloneForAQuarterOfAnHourUnlessItsSearchChanged)
{
    using Case = std::tuple<const char*, QueryCorePtr, double, bool, bool>;
    for (const auto& [name, node, secondsLater, edited, asked] :
         {Case{"at once", plain(u"a"_qs), 0, false, false}, Case{"still within", plain(u"a"_qs), 900, false, false},
          Case{"just past", plain(u"a"_qs), 900.25, false, true},
          Case{"clock set back", advanced(u"a"_qs, 1), -3600, false, false},
          Case{"clock was far ahead", plain(u"a"_qs), -90000, false, true},
          Case{"edited", plain(u"a"_qs), 1, true, true}, Case{"combined", combined({u"a"_qs}, 1), 0, false, true}}) {
        UpdateRig rig;
        rig.results[Google] = {u"http://a/"_qs};
        rig.update(rig.add(node));
        const Date first = rig.clock.now();
        const std::size_t requests = rig.loader.requests().size();
        rig.clock.advance(secondsLater);
        if (edited)
            node->changeWithQuery(u"a"_qs, 1, QString());

        rig.update(rig.root);
        EXPECT_EQ(rig.lastFacts().end, asked ? UpdateEnd::Updated : UpdateEnd::Recent) << name;
        EXPECT_EQ(rig.loader.requests().size() > requests, asked) << name;
        EXPECT_EQ(node->date(), asked ? rig.clock.now() : first) << name;
        EXPECT_EQ(node->results()->at(0).newSincePrevious(), !asked) << name;
        EXPECT_EQ(node->numberOfLinksAddedOnLatestUpdate(), 0) << name;
        const QString title = node->title();
        EXPECT_EQ(rig.posted, QStringList({u"uptDidFinish "_qs + title, u"DBInternalUpdate "_qs + title})) << name;

        rig.update(rig.root);
        EXPECT_EQ(rig.lastFacts().end, node->isCombinedQuery() ? UpdateEnd::Updated : UpdateEnd::Recent) << name;
    }
}

TEST(QueryUpdate, MergesTheServicesByRankAndCountsWhatItLeftOut)
{
    UpdateRig rig;
    rig.results[Google] = {u"http://h/g1"_qs, u"http://h/shared?g"_qs, u"http://out.org/x"_qs};
    rig.results[Yahoo] = {u"http://h/shared?y"_qs, u"http://h/y2.zip"_qs};
    rig.results[Ixquick] = {u"http://h/i1"_qs};
    const QueryCorePtr node = rig.addPlain(u"a"_qs);
    node->excludeURLString(u"out.org"_qs);
    rig.update(node);
    EXPECT_EQ(addressesOf(*node->resultsSortedBy(5)),
              QStringList({u"http://h/g1"_qs, u"http://h/i1"_qs, u"http://h/shared?y"_qs}));
    EXPECT_EQ(node->numberOfLinksAddedOnLatestUpdate(), 3);
    EXPECT_EQ(rig.lastFacts().added, 3);
    EXPECT_EQ(node->numberOfLinksExcludedOnLatestUpdate(), 1);
    EXPECT_EQ(rig.lastFacts().excluded, 1);
    EXPECT_EQ(node->nbUnreadItem(), 3);
    EXPECT_EQ(rig.answered[Google].results, 3);
    EXPECT_FALSE(rig.answered[Exalead].isFailure());
    ASSERT_EQ(rig.journal.size(), 1U);
    EXPECT_EQ(rig.journal[0].links.size(), 6);
    EXPECT_EQ(rig.journal[0].mergedInto.lock(), node);

    rig.clock.advance(1000);
    rig.numberOfNewLinks = 2;
    rig.results[Google] = {u"http://n/1"_qs, u"http://n/2"_qs, u"http://n/3"_qs};
    rig.update(node);
    EXPECT_EQ(node->numberOfLinksAddedOnLatestUpdate(), 2);
    EXPECT_EQ(node->results()->size(), 5);
    EXPECT_EQ(node->nbUnreadItem(), 5);
}

TEST(QueryUpdate, ASourceThatFailsCostsOnlyItsOwnResults)
{
    UpdateRig rig;
    rig.results[Yahoo] = {u"http://h/y"_qs};
    rig.down = {Google};
    rig.strange = {Bing};
    const QueryCorePtr node = rig.addPlain(u"a"_qs);
    rig.update(node);
    EXPECT_EQ(rig.lastFacts().end, UpdateEnd::Updated);
    EXPECT_EQ(node->results()->size(), 1);
    EXPECT_TRUE(rig.answered[Google].isFailure());
    EXPECT_EQ(rig.answered[Google].error, u"connection refused"_qs);
    EXPECT_FALSE(rig.answered[Bing].isFailure());
    EXPECT_EQ(rig.answered[Bing].error, u"its pages hold no list of results"_qs);
    EXPECT_EQ(rig.answered[Yahoo].error, QString());

    rig.down = {Google, Yahoo, Bing, Ixquick};
    rig.clock.advance(1000);
    rig.update(node);
    EXPECT_EQ(rig.lastFacts().end, UpdateEnd::Unreachable);
    EXPECT_EQ(node->results()->size(), 1);
    EXPECT_EQ(node->date(), rig.clock.now());
}

TEST(QueryUpdate, RestrictsPagesAndFiltersAddressesWhereTheQueryAsksForIt)
{
    // A name, the query, "text first-address" of each list handed over, the pattern, and what is kept.
    using Case = std::tuple<const char*, QueryCorePtr, QStringList, QString, QStringList>;
    const auto single = [](qint64 words, const QString& expression) {
        return QueryCore::initWithAdvancedQuery(u"a b"_qs, words, QString(), expression);
    };
    const QueryCorePtr combinedExpression = combined({u"m"_qs}, 1);
    combinedExpression->changeWithCombinedQuery({u"m"_qs}, 3, QString(), u"/docs/"_qs);
    const QString one = u"http://g/docs/1"_qs;
    const QString two = u"http://g/docs/22?q"_qs;
    const QStringList all = {u"http://b/"_qs, one, two, u"http://y/"_qs};
    for (const auto& [name, node, handedOver, filteredBy, left] : {
             Case{"single",
                  single(3, u"/docs/[0-9]+"_qs),
                  {u"a+b "_qs + one, u"a+b http://y/"_qs, u"a+b http://b/"_qs},
                  u"/docs/[0-9]+"_qs,
                  {one, two}},
             Case{"anchored", single(1, u"^http://g/docs/1$"_qs), {}, u"^http://g/docs/1$"_qs, {one}},
             Case{"with case", single(1, u"/DOCS/"_qs), {}, u"/DOCS/"_qs, {}},
             // Its expression stands in a text that a link has to hold as it is.
             Case{"combined",
                  combinedExpression,
                  {u"m "_qs + one, u"m http://y/"_qs},
                  u"SELF MATCHES \"/docs/\""_qs,
                  {}},
             Case{"combined, web site", combined({u"m"_qs}, 3, u"w"_qs), {}, {}, all},
             Case{"other mode", advanced(u"a"_qs, 2), {}, {}, all},
         }) {
        UpdateRig rig;
        rig.results = {{Google, {one, two}}, {Yahoo, {u"http://y/"_qs}}, {Bing, {u"http://b/"_qs}}};
        QStringList restricted;
        QString pattern;
        rig.steps.restrictResults = [&](const QueryFields&, const ResultList& records, const QString& text) {
            if (!records.isEmpty())
                restricted.append(text + u' ' + records[0].urlText().value());
            return records;
        };
        rig.steps.filterByUrl = [&](const ResultList& records, const QString& expression) {
            pattern = expression;
            return filterByUrl(records, expression);
        };
        rig.update(rig.add(node));
        EXPECT_EQ(rig.lastFacts().end, UpdateEnd::Updated) << name;
        EXPECT_EQ(restricted, handedOver) << name;
        EXPECT_EQ(pattern, filteredBy) << name;
        QStringList kept = addressesOf(node->results().value_or(ResultList()));
        kept.sort();
        EXPECT_EQ(kept, left) << name;
    }
    EXPECT_EQ(filterByUrl({ResultRecord(), linkTo(u"http://h/"_qs)}, u".*"_qs).size(), 1) << "one has no address";
}

TEST(QueryUpdate, PutsLinksIntoTheTreeThatIsInUseByThen)
{
    UpdateRig rig;
    rig.results[Google] = {u"http://h/1"_qs};
    const QueryCorePtr old = rig.addPlain(u"a"_qs);
    const QueryCorePtr reread = QueryCore::fromArchive(old->snapshot().fields);
    const QueryCorePtr renamed = QueryCore::fromArchive(old->snapshot().fields);
    renamed->setQuery(u"b"_qs);

    for (const QueryCorePtr& now : {reread, renamed, QueryCorePtr()}) {
        rig.findQuery = [&](const QString& uuid) {
            EXPECT_EQ(uuid, old->UUID());
            return now;
        };
        rig.journal.clear();
        rig.update(old);
        EXPECT_EQ(rig.lastFacts().end, now ? UpdateEnd::Updated : UpdateEnd::Removed);
        EXPECT_EQ(rig.journal.size(), now ? 1U : 0U);
        EXPECT_EQ(rig.posted.size(), 2);
        EXPECT_EQ(old->results()->size(), 0);
    }
    EXPECT_EQ(reread->results()->size(), 1);
    EXPECT_EQ(reread->date(), rig.clock.now());
    EXPECT_EQ(renamed->results()->size(), 1);
    EXPECT_EQ(renamed->date(), Date::reference()) << "the edited search was not asked yet";
}

TEST(QueryUpdate, AMarkMadeDuringTheMergeStays)
{
    UpdateRig rig;
    rig.results[Google] = {u"http://h/1"_qs};
    const QueryCorePtr node = rig.addPlain(u"a"_qs);
    rig.update(node);
    node->setCheckBlacklist(true);
    int merges = 0;
    rig.steps.merge.isBlackListed = [&](const ResultRecord&) {
        // Somebody else at work on the same query, the first two times.
        if (++merges <= 2)
            std::thread([&] { merges == 1 ? node->markAllItemAsRead() : node->setTitle(u"new title"_qs); }).join();
        return false;
    };
    rig.results[Google] = {u"http://h/2"_qs};
    rig.clock.advance(1000);
    rig.update(node);
    EXPECT_EQ(merges, 3);
    const ResultList results = node->resultsSortedBy(5).value();
    ASSERT_EQ(addressesOf(results), QStringList({u"http://h/1"_qs, u"http://h/2"_qs}));
    EXPECT_TRUE(results[0].isRead());
    EXPECT_FALSE(results[1].isRead());
    EXPECT_EQ(rig.journal.back().links.size(), 1);
    EXPECT_EQ(node->numberOfLinksAddedOnLatestUpdate(), 1);
}

TEST(QueryUpdater, StartsWhatIsEnabledAndMarksItAtOnce)
{
    UpdateRig rig;
    const QueryCorePtr folder = rig.add(QueryCore::initWithQueryFolder(u"folder"_qs));
    const QueryCorePtr paused = rig.add(QueryCore::initWithQueryFolder(u"paused folder"_qs));
    const QueryCorePtr inner = plain(u"inner"_qs);
    const QueryCorePtr off = plain(u"off"_qs);
    const QueryCorePtr inPaused = plain(u"in paused"_qs);
    folder->addChild(inner);
    folder->addChild(off);
    off->setEnabled(false);
    paused->addChild(inPaused);
    paused->setEnabled(false);
    const auto titles = [&rig] {
        QStringList names;
        for (const auto& [title, facts] : rig.ended)
            names.append(title);
        return names;
    };
    rig.update(rig.root);
    EXPECT_EQ(titles(), QStringList({u"inner"_qs}));
    EXPECT_EQ(rig.posted, QStringList({u"uptDidFinish inner"_qs, u"DBInternalUpdate inner"_qs}));
    rig.update(paused);
    EXPECT_EQ(titles(), QStringList({u"in paused"_qs}));

    rig.ended.clear();
    std::mutex gate;
    std::unique_lock closed(gate);
    rig.onLoad = [&](const QByteArray&) { const std::lock_guard wait(gate); };
    QueryUpdater updater(rig.parts());
    const QueryCorePtr fresh = rig.addPlain(u"fresh"_qs);
    updater.update(folder);
    updater.update(off);
    updater.update(fresh);
    EXPECT_TRUE(fresh->isUpdating());
    EXPECT_FALSE(off->isUpdating());
    closed.unlock();
    updater.waitUntilIdle();
    EXPECT_FALSE(fresh->isUpdating());
    EXPECT_EQ(titles(), QStringList({u"fresh"_qs}));
}

TEST(QueryUpdater, AnExceptionEndsItsOwnUpdateOnly)
{
    UpdateRig rig;
    const QueryCorePtr bad = rig.add(QueryCore::initWithAdvancedQuery(u"bad"_qs, 1, QString(), u"("_qs));
    const QueryCorePtr good = rig.addPlain(u"good"_qs);
    rig.results[Google] = {u"http://h/1"_qs};
    const QString fault = u"its URL expression \"(\" is not valid: Parentheses '( )' not balanced"_qs;
    rig.steps.filterByUrl = filterByUrl;
    rig.update(rig.root);
    ASSERT_EQ(rig.ended.size(), 2U);
    for (const auto& [title, facts] : rig.ended) {
        EXPECT_EQ(facts.end, title == u"bad"_qs ? UpdateEnd::Failed : UpdateEnd::Updated);
        EXPECT_EQ(facts.error, title == u"bad"_qs ? fault : QString());
    }
    EXPECT_EQ(bad->nbItems(), 0);
    EXPECT_EQ(rig.journal.size(), 1U);
    EXPECT_EQ(rig.posted, QStringList({u"uptDidFinish good"_qs, u"DBInternalUpdate good"_qs}));
    EXPECT_EQ(bad->date(), Date::reference());
    EXPECT_TRUE(bad->isUpdating());
}

TEST(QueryUpdater, RunsOnlySoManyAtOnceAndStopsWhatWaits)
{
    UpdateRig rig;
    for (int i = 0; i < 12; ++i)
        rig.addPlain(u"q%1"_qs.arg(i));
    std::mutex mutex;
    std::condition_variable changed;
    int running = 0;
    int most = 0;
    bool open = false;
    rig.onLoad = [&](const QByteArray&) {
        std::unique_lock lock(mutex);
        most = std::max(most, ++running);
        changed.notify_all();
        changed.wait(lock, [&] { return open; });
        --running;
    };
    QueryUpdater updater(rig.parts(), 3);
    updater.updateAll(rig.root);
    {
        std::unique_lock lock(mutex);
        changed.wait(lock, [&] { return running == 3; });
        rig.pauser.stop();
        open = true;
        changed.notify_all();
    }
    updater.waitUntilIdle();
    EXPECT_EQ(most, 3);
    EXPECT_EQ(rig.loader.requests().size(), 3U);
    EXPECT_EQ(rig.ended.size(), 12U);
    for (const auto& [title, facts] : rig.ended)
        EXPECT_EQ(facts.end, UpdateEnd::Stopped) << qPrintable(title);
    const QList<QueryCorePtr> nodes = rig.root->childs().value();
    for (const QueryCorePtr& node : nodes) {
        EXPECT_EQ(node->date(), Date::reference());
        EXPECT_FALSE(node->isUpdating());
    }
}

} // namespace
} // namespace quarry
