#include "engines/ServiceFetcher.h"

#include "archive/SmallArchive.h"
#include "support/FailingFileStore.h"
#include "support/FakePageLoader.h"
#include "support/RecordingPauser.h"
#include "support/SettableClock.h"
#include "support/TemporaryHome.h"

#include <QDir>

#include <gtest/gtest.h>

namespace quarry {
namespace {

using std::chrono::milliseconds;

QByteArray googleItem(const QByteArray& title, const QByteArray& host)
{
    return "<li class=\"g\"><h3 class=\"r\"><a href=\"http://" + host + "/\">" + title + "</a></h3></li>";
}

QByteArray googlePage(const QByteArray& items)
{
    return "<div id=\"res\"><ol>" + items + "</ol></div>";
}

/// A fetcher over a loader that answers each page with two results and one without a title between them.
class ServiceFetcherTest : public ::testing::Test {
protected:
    ServiceFetcher fetcher(const QString& query = u"sextant"_qs, const QString& uuid = u"AB-12"_qs)
    {
        const TextLookup keys = [](const QString& key) { return key; };
        return ServiceFetcher({_loader, _pauser, _clock, _files, keys, _home->cachesFolder(), _limit}, query, uuid);
    }
    FetchOutcome ask(SearchService service = SearchService::Google, const QString& query = u"sextant"_qs)
    {
        return fetcher(query).update(service, u"http://service/search?s=^start_&q=a_&&&&&_b"_qs);
    }
    [[nodiscard]] QDir cacheFolder() const { return QDir(_home->queryCacheFolder(u"AB-12"_qs)); }
    [[nodiscard]] QStringList cachedPages() const { return cacheFolder().entryList({u"*.qspagecache"_qs}); }
    [[nodiscard]] PlistValue index() const
    {
        return unarchivedValue(test::contentOf(cacheFolder().filePath(u"Cache.qsidx"_qs))).value_or(PlistValue());
    }
    std::size_t requestsOf(int times)
    {
        const std::size_t before = _loader.requests().size();
        for (int i = 0; i < times; ++i)
            EXPECT_EQ(ask().records->size(), 4);
        return _loader.requests().size() - before;
    }

    test::TemporaryHome _home;
    test::SettableClock _clock;
    test::RecordingPauser _pauser;
    test::FailingFileStore _files;
    QByteArray _body = googlePage(googleItem("One", "one.example") + googleItem("<b></b> ", "blank.example") +
                                  googleItem("Two", "two.example"));
    QString _contentType = u"text/html"_qs;
    QByteArray _failing = "no address";
    test::FakePageLoader _loader{[this](const QByteArray& address) {
        return address.contains(_failing) ? test::FakePageLoader::failure(u"HTTP status 503"_qs, 503)
                                          : test::FakePageLoader::page(_body, _contentType);
    }};
    qint64 _limit = 15;
};

TEST_F(ServiceFetcherTest, MakesRecordsWithARankOverAllPages)
{
    const FetchOutcome outcome = ask();
    ASSERT_TRUE(outcome.records);
    ASSERT_EQ(outcome.records->size(), 4);
    const ResultRecord record = outcome.records->at(2);
    EXPECT_EQ(record, ResultRecord()
                          .withEngineId(u"1"_qs)
                          .withRank(4)
                          .withTitle(u"One"_qs)
                          .withUrl(*Url::fromText(u"http://one.example/"_qs))
                          .withTextFromPage(u"100_No description"_qs)
                          .withDateOfFind(_clock.now())
                          .withChecksum(u""_qs)
                          .withUserSaw(false));
    EXPECT_EQ(outcome.records->at(3).rank(), 6);

    ASSERT_EQ(outcome.pages.size(), 2);
    const PageFacts& facts = outcome.pages.last();
    EXPECT_EQ(facts.address, u"http://service/search?s=10&q=a%26b");
    EXPECT_EQ(facts.source, PageFacts::Source::Network);
    EXPECT_EQ(facts.bytes, _body.size());
    EXPECT_EQ(facts.httpStatus, 200);
    EXPECT_EQ(std::make_tuple(facts.start, facts.hasResultsArea, facts.items, facts.results),
              std::make_tuple(10, true, 3, 2));
}

TEST_F(ServiceFetcherTest, AsksAtOffsetsBelowTheLimit)
{
    const std::pair<qint64, qsizetype> cases[] = {{-5, 0}, {0, 0}, {1, 1}, {10, 1}, {11, 2}, {40, 4}};
    for (const auto& [limit, pages] : cases) {
        _limit = limit;
        const FetchOutcome outcome = ask();
        EXPECT_EQ(outcome.pages.size(), pages);
        EXPECT_TRUE(outcome.records);
    }
}

TEST_F(ServiceFetcherTest, RefusesWithoutAQueryText)
{
    for (const SearchService service : AllSearchServices)
        EXPECT_FALSE(ask(service, QString()).records);
    EXPECT_FALSE(fetcher().updateGoogle(QString()).records);
    EXPECT_TRUE(fetcher().updateBing(QString()).records) << "only Google looks at the address";
    EXPECT_FALSE(ask(SearchService::Exalead).records);
    EXPECT_TRUE(_loader.requests().empty());
}

TEST_F(ServiceFetcherTest, PausesAsEachServiceWants)
{
    ask(SearchService::Google);
    EXPECT_EQ(_pauser.pauses(), std::vector(2, milliseconds(500)));
    ask(SearchService::Google);
    EXPECT_EQ(_pauser.pauses().size(), 2U) << "nothing was fetched";
    for (const SearchService service : {SearchService::Yahoo, SearchService::Bing, SearchService::Ixquick}) {
        const std::size_t before = _pauser.pauses().size();
        ask(service);
        ask(service);
        EXPECT_EQ(_pauser.pauses().size(), before + 4) << "cached or not";
        EXPECT_EQ(_pauser.pauses().back(), milliseconds(100));
    }
    EXPECT_EQ(_loader.requests().back(), "http://service/search?s=10&q=a_&&&&&_b") << "Ixquick has no marker";
    EXPECT_EQ(_loader.requests().size(), 4U);
}

TEST_F(ServiceFetcherTest, LeavesOutAPageThatFails)
{
    _failing = "s=0";
    const FetchOutcome outcome = ask();
    ASSERT_EQ(outcome.records->size(), 2);
    EXPECT_EQ(outcome.records->first().rank(), 1);
    EXPECT_EQ(outcome.pages.first().error, u"HTTP status 503");
    EXPECT_EQ(outcome.pages.first().source, PageFacts::Source::Nowhere);
    EXPECT_EQ(cachedPages().size(), 1) << "what failed is not kept";
    EXPECT_EQ(_pauser.pauses().size(), 2U) << "a failed request was a request";
}

TEST_F(ServiceFetcherTest, StopsBeforeTheNextPage)
{
    _pauser.onPause = [this] { _pauser.stop(); };
    const FetchOutcome outcome = ask();
    EXPECT_TRUE(outcome.stopped);
    EXPECT_EQ(outcome.records->size(), 2) << "the page that is there is used";
    EXPECT_EQ(cachedPages().size(), 1);
    EXPECT_TRUE(ask(SearchService::Bing).stopped);
    EXPECT_EQ(_loader.requests().size(), 1U);
}

TEST_F(ServiceFetcherTest, KeepsPagesForSixHoursFromTheFirst)
{
    EXPECT_EQ(requestsOf(2), 2U);
    const double started = *index()[u"cacheDateKey"_qs].real();
    EXPECT_EQ(started, _clock.now().secondsSinceReference());
    EXPECT_EQ(ask().pages.first().source, PageFacts::Source::Cache);

    _clock.advance(3 * 3600);
    _limit = 25;
    EXPECT_EQ(ask().records->size(), 6);
    EXPECT_EQ(*index()[u"cacheDateKey"_qs].real(), started) << "a later page does not renew the cache";
    EXPECT_EQ(cachedPages().size(), 3);

    const QStringList old = cachedPages();
    ASSERT_TRUE(test::writeFile(cacheFolder().filePath(u"left.QSPageCache"_qs), "x"));
    ASSERT_TRUE(test::writeFile(cacheFolder().filePath(u"thumb.jpg"_qs), "x"));
    _limit = 15;
    _clock.advance(3 * 3600 + 1);
    EXPECT_EQ(requestsOf(1), 2U);
    EXPECT_EQ(cachedPages().size(), 2);
    for (const QString& name : cachedPages())
        EXPECT_FALSE(old.contains(name));
    EXPECT_TRUE(cacheFolder().exists(u"thumb.jpg"_qs)) << "the cache's own files only";
    EXPECT_FALSE(cacheFolder().exists(u"left.QSPageCache"_qs));

    _clock.advance(-86000);
    EXPECT_EQ(requestsOf(1), 0U) << "a clock may be set back a little";
    _clock.advance(-500);
    EXPECT_EQ(requestsOf(1), 2U) << "a date far in the future is none";
    EXPECT_EQ(cachedPages().size(), 2);
}

TEST_F(ServiceFetcherTest, FetchesAgainWhatTheCacheCannotGive)
{
    const auto damagePages = [this](const QByteArray& bytes) {
        for (const QString& name : cachedPages())
            EXPECT_TRUE(test::writeFile(cacheFolder().filePath(name), bytes));
    };
    EXPECT_EQ(requestsOf(1), 2U);
    damagePages("no stream");
    EXPECT_EQ(requestsOf(2), 2U);
    const QByteArray whole = test::contentOf(cacheFolder().filePath(cachedPages().first()));
    damagePages(whole.first(whole.size() - 5));
    EXPECT_EQ(requestsOf(2), 2U);
    for (const QString& name : cachedPages())
        EXPECT_TRUE(cacheFolder().remove(name));
    EXPECT_EQ(requestsOf(2), 2U);
    ASSERT_TRUE(test::writeFile(cacheFolder().filePath(u"Cache.qsidx"_qs), "no archive"));
    EXPECT_EQ(requestsOf(2), 2U);
}

TEST_F(ServiceFetcherTest, GoesOnWithoutACacheThatCannotBeWritten)
{
    _files.failWrites = true;
    EXPECT_EQ(requestsOf(2), 4U) << "no index, no cache";
    _files.failWrites = false;
    ASSERT_TRUE(QDir(_home->cachesFolder()).removeRecursively());
    ASSERT_TRUE(test::writeFile(_home->cachesFolder(), "a file where the folder should be"));
    EXPECT_EQ(requestsOf(2), 4U);
}

TEST_F(ServiceFetcherTest, IsNotLedOutOfTheFolderByNames)
{
    const QString outside = _home->cachesFolder() + u"/outside.qspagecache"_qs;
    ASSERT_EQ(requestsOf(1), 2U);
    ASSERT_TRUE(QFile::copy(cacheFolder().filePath(cachedPages().first()), outside));
    PlistValue::Dictionary names;
    for (const int start : {0, 10})
        names.insert(u"http://service/search?s=%1&q=a%26b"_qs.arg(start), u"../outside"_qs);
    const PlistValue hostile =
        PlistValue::Dictionary{{u"cacheDateKey"_qs, _clock.now().secondsSinceReference()}, {u"cacheKey"_qs, names}};
    ASSERT_TRUE(test::writeFile(cacheFolder().filePath(u"Cache.qsidx"_qs), archivedData(hostile)));
    EXPECT_EQ(requestsOf(1), 2U);
    EXPECT_TRUE(QFile::exists(outside));

    const auto entries = [this] { return QDir(_home->cachesFolder()).entryList(QDir::AllEntries | QDir::Hidden); };
    const QStringList before = entries();
    for (const QString& uuid : {u".."_qs, u"../x"_qs, u""_qs, u"a/b"_qs}) {
        EXPECT_EQ(fetcher(u"q"_qs, uuid).updateGoogle(u"http://service/?s=^start_"_qs).records->size(), 4);
        EXPECT_EQ(entries(), before) << qPrintable(uuid);
    }
}

TEST_F(ServiceFetcherTest, KeepsThePagesTextAndEncoding)
{
    _limit = 5;
    _contentType = u"text/html; charset=ISO-8859-1"_qs;
    _body = googlePage("<li class=\"g\"><h3 class=\"r\"><a href=\"http://a.example/\">Caf\xE9</a></h3>"
                       "<div class=\"s\">Le caf\xE9</div></li>");
    for (const auto source : {PageFacts::Source::Network, PageFacts::Source::Cache}) {
        const FetchOutcome outcome = ask();
        EXPECT_EQ(outcome.pages.first().source, source);
        EXPECT_EQ(outcome.records->first().title(), u"Caf\u00E9");
        EXPECT_EQ(outcome.records->first().textFromPage(), u"100_No description") << "no UTF-8 when read again";
    }
}

} // namespace
} // namespace quarry
