#include "engines/PageSteps.h"

#include "Records.h"
#include "archive/PropertyList.h"
#include "platform/CurlPageLoader.h"
#include "platform/NetworkReach.h"
#include "support/FakePageLoader.h"
#include "support/LoopbackServer.h"
#include "support/RecordingPauser.h"
#include "text/Data.h"

#include <gtest/gtest.h>

#include <map>

namespace quarry {
namespace {

using test::FakePageLoader;
using test::LoopbackServer;

ResultRecord namedBy(SearchService service, const QString& address)
{
    return linkTo(address).withEngineId(searchServiceIdentifier(service)).withTextFromPage(u"as found"_qs);
}

/// Google on another host, all others where they are by default.
SearchServices servicesWithGoogleAt(const QString& host)
{
    const PlistValue::Dictionary google{{QStringLiteral("host"), host}};
    return SearchServices::fromPropertyList(writeXmlPropertyList(PlistValue::Dictionary{{u"Google"_qs, google}}))
        .services;
}

class PageSteps : public ::testing::Test {
protected:
    LoadedPage answer(const QByteArray& address) const
    {
        const auto page = pages.find(address);
        return page == pages.end() ? FakePageLoader::failure(u"HTTP status 404"_qs)
                                   : FakePageLoader::page(page->second);
    }
    ResultList restricted(const QStringList& addresses, const QString& text)
    {
        return restrictResults(query, linksTo(addresses), text, loaders, pauser, hooks);
    }

    std::map<QByteArray, QByteArray> pages;
    FakePageLoader anywhere{[this](const QByteArray& address) { return answer(address); }};
    FakePageLoader publicOnly{[this](const QByteArray& address) { return answer(address); }};
    ResultPageLoaders loaders{anywhere, publicOnly, SearchServices(), isPrivateHost};
    test::RecordingPauser pauser;
    MergeHooks hooks;
    QueryFields query;
};

TEST_F(PageSteps, ResultsAreKeptWhenTheirPageHoldsTheText)
{
    pages = {{"http://h/short", "<body>A <b>rare</b> bee.</body>"},
             {"http://h/long", QByteArray("x").repeated(150) + " rare bee rare bee " + QByteArray("y").repeated(150)},
             {"http://h/case", "a Rare bee"},
             {"http://h/markup", "<body title='rare bee'>none</body>"},
             {"http://h/known?x=2", "rare bee"},
             {"http://h/listed", "rare bee"},
             {"http://h/a.PDF", "rare bee"},
             {"http://h/a.xml", "rare bee"}};
    query._currentResult = linksTo({u"http://h/known?x=1"_qs});
    query._isSuscribedToBlacklist = true;
    hooks.isBlackListed = [](const ResultRecord& record) { return record.urlText() == u"http://h/listed"_qs; };
    const QStringList addresses = {u"http://h/known?x=2"_qs, u"http://h/listed"_qs, u"http://h/short"_qs,
                                   u"http://h/a.PDF"_qs,     u"http://h/a.xml"_qs,  u"http://h/gone"_qs,
                                   u"http://h/case"_qs,      u"http://h/markup"_qs, u"http://h/long"_qs};
    const ResultList kept = restricted(addresses, u"rare bee"_qs);
    ASSERT_EQ(addressesOf(kept), QStringList({u"http://h/short"_qs, u"http://h/long"_qs}));
    EXPECT_EQ(kept[0].textFromPage(), u"A rare bee."_qs);
    EXPECT_EQ(kept[1].textFromPage(), QString(99, u'x') + u" rare bee rare bee "_qs + QString(90, u'y'));
    EXPECT_EQ(kept[0].title(), u"title"_qs);
    EXPECT_EQ(pauser.pauses(), std::vector(7, std::chrono::milliseconds(100))) << "none before dropped links";
    EXPECT_EQ(publicOnly.requests().size(), 5U);

    query._isSuscribedToBlacklist = false;
    EXPECT_EQ(restricted({u"http://h/listed"_qs}, u"rare bee"_qs).size(), 1);
    EXPECT_TRUE(restricted({u"http://h/listed"_qs}, u""_qs).isEmpty());
    EXPECT_TRUE(restricted({}, u"rare bee"_qs).isEmpty());
}

TEST_F(PageSteps, PagesThatCanBeReadGetTheirDigest)
{
    pages = {{"http://h/a", "caf\xC3\xA9"}, {"http://h/b", ""}};
    ResultList links = linksTo({u"http://h/a"_qs, u"http://h/gone"_qs, u"http://h/b"_qs});
    links[1] = links[1].withChecksum(u"before"_qs);
    const ResultList digested = refreshChecksumOfItems(links, loaders, pauser);
    ASSERT_EQ(addressesOf(digested), addressesOf(links));
    EXPECT_EQ(digested[0].checksum(), md5sum(u"caf\u00e9"_qs));
    EXPECT_EQ(digested[1].checksum(), u"before"_qs);
    EXPECT_EQ(digested[2].checksum(), u"d41d8cd98f00b204e9800998ecf8427e"_qs);
}

TEST_F(PageSteps, NothingMoreIsLoadedOnceTheProgramIsAskedToStop)
{
    pages = {{"http://h/a", "bee"}, {"http://h/b", "bee"}};
    pauser.onPause = [this] {
        if (pauser.pauses().size() == 2)
            pauser.stop();
    };
    static_cast<void>(restricted({u"http://h/a"_qs, u"http://h/b"_qs}, u"bee"_qs));
    EXPECT_EQ(publicOnly.requests(), std::vector<QByteArray>{"http://h/a"});
    static_cast<void>(refreshChecksumOfItems(linksTo({u"http://h/b"_qs}), loaders, pauser));
    EXPECT_EQ(publicOnly.requests().size(), 1U);
}

TEST_F(PageSteps, OnlyAServiceOnAPrivateAddressMayNamePagesThere)
{
    LoopbackServer server([](const QByteArray&, const auto& send) { send(LoopbackServer::reply("a bee")); });
    CurlPageLoader open;
    CurlPageLoader guarded(CurlPageLoader::Limits(), [](const QByteArray& ip) { return !isPrivateAddress(ip); });
    const QString page = u"http://localhost:%1/page"_qs.arg(server.port());
    const ResultList links = {namedBy(SearchService::Google, page), namedBy(SearchService::Bing, page), linkTo(page)};
    for (const auto& [host, fetched] : {std::pair(u"127.0.0.1"_qs, 1U), std::pair(u"localhost"_qs, 1U),
                                        std::pair(u"8.8.8.8"_qs, 0U), std::pair(u"no.such.host.invalid"_qs, 0U)}) {
        ResultPageLoaders picked(open, guarded, servicesWithGoogleAt(host), isPrivateHost);
        const std::size_t before = server.requests().size();
        const ResultList digested = refreshChecksumOfItems(links, picked, pauser);
        EXPECT_EQ(server.requests().size() - before, fetched) << qPrintable(host);
        EXPECT_EQ(digested[0].checksum().has_value(), fetched == 1) << qPrintable(host);
        const ResultList kept = restrictResults(query, links, u"bee"_qs, picked, pauser, hooks);
        EXPECT_EQ(kept.size(), fetched) << qPrintable(host);
    }
}

} // namespace
} // namespace quarry
