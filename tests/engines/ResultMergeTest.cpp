#include "engines/ResultMerge.h"

#include "engines/Records.h"
#include "model/ResultComparator.h"

#include <QUuid>

#include <gtest/gtest.h>

namespace quarry {
namespace {

constexpr double Day = 86400.0;
const Date Now(700000000.0);
const MergeSettings Settings{Now, 3, 0};

QueryFields queryWith(const ResultList& results)
{
    QueryFields query;
    query._uuid = u"QUERY"_qs;
    query._currentResult = results;
    return query;
}

TEST(ResultMerge, StampsWhatIsNew)
{
    QueryFields query = queryWith({});
    query._currentResult.reset();
    EXPECT_FALSE(expiresPreviousResults(query));
    const MergeOutcome outcome =
        compareWithKnownLinks(query, linksTo({u"http://h/a"_qs, u"http://h/b"_qs}), false, Settings);
    ASSERT_EQ(outcome.results.size(), 2);
    EXPECT_EQ(outcome.added, 2);
    const ResultRecord& record = outcome.results[0];
    EXPECT_EQ(record, linkTo(u"http://h/a"_qs)
                          .withNewSincePrevious(true)
                          .withRating(0)
                          .withVisible(true)
                          .withParentQueryUuid(u"QUERY"_qs)
                          .withLinkUuid(record.linkUuid().value()));
    const QUuid uuid = QUuid::fromString(record.linkUuid().value());
    EXPECT_EQ(uuid.version(), QUuid::Random);
    EXPECT_EQ(uuid.toString(QUuid::WithoutBraces).toUpper(), record.linkUuid());
    EXPECT_NE(record.linkUuid(), outcome.results[1].linkUuid());
}

TEST(ResultMerge, ExpiresOldUnratedResultsOnlyWhenAsked)
{
    // By the read mark, which is the same for all: the list keeps its order.
    const MergeSettings settings{Now, UnreadFirst, 0};
    const ResultRecord old = linkTo(u"http://old/"_qs).withDateOfFind(Now.plusSeconds(-90 * Day - 1));
    const ResultRecord kept =
        linkTo(u"http://edge/"_qs).withDateOfFind(Now.plusSeconds(-90 * Day)).withLinkUuid(u"U"_qs);
    const ResultRecord hidden = linkTo(u"http://undated/"_qs).withVisible(false);
    const QueryFields query = queryWith({old, old.withRating(0), old.withRating(3), old.withRating(-1), kept, hidden});

    const ResultList left = compareWithKnownLinks(query, {}, true, settings).results;
    ASSERT_EQ(left.size(), 4);
    EXPECT_EQ(left[0].rating(), 3);
    EXPECT_EQ(left[1].rating(), -1);
    EXPECT_EQ(left[2], kept.withNewSincePrevious(false).withVisible(true));
    EXPECT_EQ(left[3].visible(), false);
    for (const ResultRecord& record : left) {
        EXPECT_EQ(record.newSincePrevious(), false);
        EXPECT_TRUE(record.linkUuid());
        EXPECT_TRUE(record.visible());
    }
    EXPECT_EQ(compareWithKnownLinks(query, {}, false, settings).results, *query._currentResult);
}

TEST(ResultMerge, LeavesOutWhatIsKnownHiddenOrNoPage)
{
    QueryFields query = queryWith(linksTo({u"http://known/a?x=1"_qs}));
    query._hiddenResults = linksTo({u"http://hidden/"_qs});
    query._urlFilters = QList<FilterObject>{nullptr};
    MergeHooks hooks;
    hooks.testString = [](const FilterObject&, const QString& address) { return address.contains(u"filtered"); };
    const MergeOutcome outcome =
        compareWithKnownLinks(query,
                              linksTo({u"http://known/a?x=2"_qs, u"https://hidden"_qs, u"http://h/x.ZIP"_qs,
                                       u"http://h/x.sitx?a"_qs, u"http://filtered/"_qs, u"http://h/x.pdf"_qs,
                                       u"http://h/zip"_qs, u"http://h/n?1"_qs, u"http://h/n?2"_qs}),
                              true, Settings, hooks);
    EXPECT_EQ(addressesOf(outcome.results),
              QStringList({u"http://known/a?x=1"_qs, u"http://h/x.pdf"_qs, u"http://h/zip"_qs, u"http://h/n?1"_qs}));
    EXPECT_EQ(outcome.added, 3);
    EXPECT_EQ(outcome.excluded + outcome.blacklisted, 0);
}

TEST(ResultMerge, CountsExcludedHostsBeforeTheBlacklistAndStopsWhenEnoughWereAdded)
{
    QueryFields query = queryWith({});
    query._excludedDomains = QMap<QString, bool>{{u"bad"_qs, true}};
    MergeHooks hooks;
    hooks.isBlackListed = [](const ResultRecord& record) {
        return record.urlText()->contains(u"bad", Qt::CaseInsensitive);
    };
    const ResultList links = linksTo({u"http://bad/1"_qs, u"http://ok/1"_qs, u"http://bader/2"_qs, u"http://Bad/3"_qs,
                                      u"http://ok/2"_qs, u"http://bad/4"_qs, u"http://ok/3"_qs});
    using Case = std::tuple<bool, qint64, qint64, qint64, qint64>;
    for (const auto& [subscribed, limit, added, blacklisted, excluded] :
         {Case{false, 0, 5, 0, 2}, Case{true, 0, 3, 2, 2}, Case{true, 2, 2, 2, 1}, Case{true, 1, 1, 0, 1},
          Case{true, -1, 3, 2, 2}}) {
        query._isSuscribedToBlacklist = subscribed;
        const MergeOutcome outcome = compareWithKnownLinks(query, links, false, {Now, 3, limit}, hooks);
        EXPECT_EQ(outcome.added, added) << limit;
        EXPECT_EQ(outcome.results.size(), added);
        EXPECT_EQ(outcome.blacklisted, blacklisted) << limit;
        EXPECT_EQ(outcome.excluded, excluded) << limit;
    }
}

TEST(ResultMerge, APageThatChangedReadsAsUnreadWhenDigestsAreOn)
{
    const ResultRecord read = linkTo(u"http://h/"_qs).withUserSaw(true).withChecksum(u"old"_qs).withVisible(true);
    using Case = std::tuple<bool, bool, QString, QString, QString, bool>;
    for (const auto& [digests, visible, address, incoming, digest, stillRead] :
         {Case{true, true, u"http://h/"_qs, u"new"_qs, u"new"_qs, false},
          Case{false, true, u"http://h/"_qs, u"new"_qs, u"old"_qs, true},
          Case{true, false, u"http://h/"_qs, u"new"_qs, u"old"_qs, true},
          Case{true, true, u"http://h/"_qs, u"old"_qs, u"old"_qs, true},
          Case{true, true, u"http://h/"_qs, u""_qs, u"old"_qs, true},
          Case{true, true, u"http://h/?same"_qs, u"new"_qs, u"old"_qs, true}}) {
        QueryFields query = queryWith({read.withVisible(visible)});
        query._computeCheckSumOfLinks = digests;
        const MergeOutcome outcome =
            compareWithKnownLinks(query, {linkTo(address).withChecksum(incoming)}, true, Settings);
        ASSERT_EQ(outcome.results.size(), 1);
        EXPECT_EQ(outcome.results[0].checksum(), digest);
        EXPECT_EQ(outcome.results[0].isRead(), stillRead);
        EXPECT_EQ(outcome.added, 0);
    }
}

TEST(ResultMerge, SortsOldAndNewByTheQuerysOrder)
{
    const QueryFields query = queryWith({linkTo(u"http://a/"_qs).withRank(2), linkTo(u"http://b/"_qs).withRank(4)});
    const ResultList links = {linkTo(u"http://c/"_qs).withRank(3), linkTo(u"http://d/"_qs).withRank(1)};
    EXPECT_EQ(addressesOf(compareWithKnownLinks(query, links, true, Settings).results),
              QStringList({u"http://d/"_qs, u"http://a/"_qs, u"http://c/"_qs, u"http://b/"_qs}));
    EXPECT_EQ(addressesOf(compareWithKnownLinks(query, links, true, {Now, 5, 0}).results),
              QStringList({u"http://a/"_qs, u"http://b/"_qs, u"http://c/"_qs, u"http://d/"_qs}));
}

} // namespace
} // namespace quarry
