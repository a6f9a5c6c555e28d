#include "model/ModelTestSupport.h"
#include "model/QueryCore.h"

namespace quarry {

namespace {

const ResultRecord A = recordNamed("a"_q);
const ResultRecord B = recordNamed("b"_q);
const ResultRecord C = recordNamed("c"_q);

} // namespace

TEST(QueryResults, ListsWhatTheSearchStringMatches)
{
    const QueryCorePtr node = queryWith({A, B.withTextFromPage("an a"_q), C});
    node->setSearchString("A"_q);
    EXPECT_EQ(titlesOf(node->results()), "a b c"_q) << "every address contains an a";
    node->setSearchString("A.EXAMPLE"_q);
    EXPECT_EQ(titlesOf(node->results()), "a"_q);
    EXPECT_EQ(node->nbItems(), 1);
    EXPECT_EQ(node->nbUnreadItem(), 1);
    node->setSearchString(QString());
    EXPECT_EQ(node->nbItems(), 3);
}

TEST(QueryResults, SortingIsRememberedAndFoldersHaveNone)
{
    const QueryCorePtr node = queryWith({C, A, B});
    EXPECT_EQ(titlesOf(node->resultsSortedBy(6)), "a b c"_q);
    EXPECT_EQ(titlesOf(node->results()), "a b c"_q);
    EXPECT_EQ(node->snapshot().sortType, 6);
    const QueryCorePtr folder = QueryCore::initWithQueryFolder("f"_q);
    EXPECT_EQ(folder->resultsSortedBy(6), std::nullopt);
    EXPECT_EQ(folder->snapshot().sortType, 3);
    EXPECT_EQ(QueryCore::fromArchive({})->snapshot().sortType, 0);
}

TEST(QueryResults, HidingMovesARecordToTheEndOfTheOtherList)
{
    const QueryCorePtr node = queryWith({A, B, A});
    EXPECT_EQ(node->hiddenResults(), std::nullopt);
    node->setHidden(false, A);
    EXPECT_EQ(node->nbItems(), 3) << "it is not hidden";
    node->setHidden(true, B);
    EXPECT_EQ(titlesOf(node->results()), "a a"_q);
    node->setHidden(true, A);
    EXPECT_EQ(titlesOf(node->hiddenResults()), "a b"_q);
    EXPECT_EQ(node->nbUnreadItem(), 1);
    const ResultRecord hidden = node->hiddenResults()->first();
    EXPECT_EQ(hidden.visible(), false);
    EXPECT_EQ(node->currentRecord(B)->visible(), false) << "found again in the hidden list";
    node->setHidden(false, A);
    EXPECT_EQ(node->nbHiddenItems(), 2) << "the record that was visible is not the one that is hidden";
    node->setHidden(false, hidden);
    EXPECT_EQ(titlesOf(node->results()), "a a"_q);
    EXPECT_EQ(node->results()->last().visible(), true);
}

TEST(QueryResults, MarksTheFirstEqualRecordAndCountsBlindly)
{
    const QueryCorePtr node = queryWith({A, B, A, C});
    EXPECT_EQ(node->nbUnreadItem(), 4);
    node->markItemAsRead(A);
    const ResultList marked = *node->results();
    EXPECT_EQ(marked.at(0).userSaw(), true);
    EXPECT_EQ(marked.at(0).parentQueryUuid(), node->UUID());
    EXPECT_EQ(marked.at(2).userSaw(), std::nullopt);
    EXPECT_EQ(node->nbUnreadItem(), 3);
    node->markItemAsRead(marked.at(0));
    EXPECT_EQ(node->nbUnreadItem(), 2) << "read again lowers the count again";
    node->markItemAsUnread(marked.at(0));
    EXPECT_EQ(node->nbUnreadItem(), 3);
    node->markItemAsRead(recordNamed("stranger"_q));
    EXPECT_EQ(node->nbUnreadItem(), 3);
}

TEST(QueryResults, RecountsUnreadOnlyWhileTheCountIsNotPositive)
{
    const QueryCorePtr node = queryWith({A, B});
    EXPECT_EQ(node->nbUnreadItem(), 2);
    ASSERT_TRUE(node->replaceResultsIfUnchanged(node->snapshot().generation, {A}, Date(2)));
    EXPECT_EQ(node->nbUnreadItem(), 2) << "a positive count is trusted";
    node->invalidateUnread();
    EXPECT_EQ(node->nbUnreadItem(), 1);
    node->markAllItemAsRead();
    EXPECT_EQ(node->nbUnreadItem(), 0);
    ASSERT_TRUE(node->replaceResultsIfUnchanged(node->snapshot().generation, {A, B, C}, Date(3)));
    EXPECT_EQ(node->nbUnreadItem(), 3) << "zero is counted anew";
    node->markAllItemAsRead();
    node->markAllItemAsRead();
    EXPECT_EQ(node->nbUnreadItem(), 0);
}

TEST(QueryResults, RatesARecordInItsPlace)
{
    const QueryCorePtr node = queryWith({A, B});
    EXPECT_EQ(node->setRating(0, C), C) << "an unrated record has the rating 0 already";
    EXPECT_EQ(node->setRating(3, C), std::nullopt);
    const std::optional<ResultRecord> rated = node->setRating(5, B);
    EXPECT_EQ(node->results()->at(1), rated);
    EXPECT_EQ(rated->parentQueryUuid(), node->UUID());
    const ResultRecord stored = rated->withParentQueryUuid("other"_q);
    ASSERT_TRUE(node->replaceResultsIfUnchanged(node->snapshot().generation, {stored}, Date(2)));
    EXPECT_EQ(node->setRating(-1, stored)->rating(), -1);
    EXPECT_EQ(node->results()->first().parentQueryUuid(), "other"_q) << "not written when it is cleared";
}

TEST(QueryResults, ExcludesAHostWithAllItsVisibleRecords)
{
    const ResultRecord other = recordAt("http://A.example/x"_q);
    const QueryCorePtr node = queryWith({A, B, other, recordAt("https://a.example:8080/y"_q), A});
    node->setHidden(true, A);
    node->excludeItem(A);
    EXPECT_EQ(*node->results(), ResultList({B, other})) << "hosts compare with case";
    EXPECT_EQ(node->nbHiddenItems(), 1);
    EXPECT_TRUE(node->isExcludedURL("ftp://a.example/z"_q));
    EXPECT_FALSE(node->isExcludedURL("a.example"_q));
    node->excludeItem(ResultRecord());
    node->excludeItem(recordAt("mailto:someone"_q));
    EXPECT_EQ(node->excludedHosts().size(), 3);
    node->includeHost("a.example"_q);
    EXPECT_FALSE(node->isExcludedURL("http://a.example/"_q));
}

TEST(QueryResults, ExcludesTheHostOfATypedAddress)
{
    for (const auto& [typed, host] : std::map<QString, QString>{{"b.example"_q, "b.example"_q},
                                                                {"https://b.example/x"_q, "b.example"_q},
                                                                {"x?u=http://b.example/"_q, ""_q},
                                                                {"ftp://b.example/"_q, "ftp"_q},
                                                                {""_q, ""_q}}) {
        const QueryCorePtr node = queryWith({A, B});
        const QStringList before = node->excludedHosts();
        node->excludeURLString(typed);
        QStringList added = node->excludedHosts();
        added.removeIf([&before](const QString& each) { return before.contains(each); });
        EXPECT_EQ(added.join(u' '), host) << typed.toStdString();
        EXPECT_EQ(node->nbItems(), host == "b.example"_q ? 1 : 2) << typed.toStdString();
    }
}

TEST(QueryResults, FindsARecordThatWasReplacedMeanwhile)
{
    const QueryCorePtr node = queryWith({A, B});
    node->markItemAsRead(A);
    EXPECT_EQ(node->currentRecord(A)->userSaw(), true);
    EXPECT_EQ(node->currentRecord(B), B);
    EXPECT_EQ(node->currentRecord(C), std::nullopt);
    EXPECT_EQ(node->currentRecord(ResultRecord()), ResultRecord());
}

} // namespace quarry
