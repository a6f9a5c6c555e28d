#include "model/ModelTestSupport.h"
#include "model/QueryCore.h"

namespace quarry {

namespace {

const QString Empty = ""_q;
const QString Words = "two words"_q;
const QString Site = "example.org"_q;
const QString Expression = "^http"_q;

QueryCorePtr advanced()
{
    return QueryCore::initWithAdvancedQuery(Words, 2, Site, Expression);
}

} // namespace

TEST(QueryDefinition, StoresBlanksAsPlusAndShowsThemAgain)
{
    const QueryCorePtr node = QueryCore::initWithQuery("salt & pepper"_q);
    EXPECT_EQ(node->storedQuery(), "salt+&+pepper"_q);
    EXPECT_EQ(node->query(), "salt & pepper"_q);
    EXPECT_EQ(node->queryAmpersandProtected(), "salt _&&&&&_ pepper"_q);
}

TEST(QueryDefinition, MakesFourKindsOfNodeAndNoneFromNothing)
{
    const QueryCorePtr plain = QueryCore::init();
    EXPECT_EQ(plain->kind(), QueryKind::Plain);
    EXPECT_EQ(plain->storedQuery(), std::nullopt);
    EXPECT_EQ(plain->date(), Date::reference());
    EXPECT_EQ(plain->wordsRestriction(), 1);
    EXPECT_EQ(plain->searchType(), 0);
    EXPECT_EQ(plain->excludedHosts().size(), 2);

    const QueryCorePtr combined = QueryCore::initWithAdvancedCombinedQuery({"a"_q, Empty, "b"_q}, 3, Site);
    EXPECT_EQ(combined->kind(), QueryKind::Combined);
    EXPECT_EQ(combined->storedQuery(), " a b"_q);
    EXPECT_EQ(combined->combinedQueries()->size(), 3);
    EXPECT_EQ(combined->snapshot().fields._urlRegularExpression, std::nullopt);

    const QueryCorePtr folder = QueryCore::initWithQueryFolder(std::nullopt);
    EXPECT_EQ(folder->kind(), QueryKind::Folder);
    EXPECT_EQ(folder->date(), std::nullopt);
    EXPECT_EQ(folder->results(), std::nullopt);
    EXPECT_EQ(folder->snapshot().fields._excludedDomains, std::nullopt);

    EXPECT_EQ(advanced()->kind(), QueryKind::Advanced);
    EXPECT_EQ(advanced()->wordsRestriction(), 2);
    EXPECT_EQ(QueryCore::initWithQuery(std::nullopt), nullptr);
    EXPECT_EQ(QueryCore::initWithQuery(Empty), nullptr);
    EXPECT_EQ(QueryCore::initWithAdvancedQuery(Empty, 1, Site, Expression), nullptr);
    EXPECT_EQ(QueryCore::initWithAdvancedCombinedQuery({}, 1, Site), nullptr);
}

TEST(QueryDefinition, SetQueryKeepsTheTextAsItIsAndForgetsTheResults)
{
    const QueryCorePtr node = queryWith({recordNamed("a"_q)});
    node->setQuery(std::nullopt);
    EXPECT_EQ(node->nbItems(), 1);
    node->setQuery("a b+c"_q);
    EXPECT_EQ(node->storedQuery(), "a b+c"_q);
    EXPECT_EQ(node->query(), "a b c"_q);
    EXPECT_EQ(node->nbItems(), 0);
    EXPECT_EQ(node->date(), Date::reference());
    EXPECT_FALSE(node->queryChanged());
}

TEST(QueryDefinition, ARejectedChangeStillMarksTheNodeChangedAndAdvanced)
{
    const QueryCorePtr node = QueryCore::initWithQuery(Words);
    node->setUpdating(true);
    node->changeWithQuery(Empty, 1, Empty);
    EXPECT_TRUE(node->takeQueryChanged());
    EXPECT_FALSE(node->queryChanged());
    EXPECT_TRUE(node->isAdvancedQuery());
    EXPECT_TRUE(node->isUpdating());
    EXPECT_EQ(node->query(), Words);
}

TEST(QueryDefinition, AChangeWithoutRestrictionsMakesThePlainQueryAgain)
{
    const QueryCorePtr node = advanced();
    node->setUpdating(true);
    node->changeWithQuery("new words"_q, 1, Empty);
    EXPECT_EQ(node->kind(), QueryKind::Plain);
    EXPECT_FALSE(node->isUpdating());
    EXPECT_EQ(node->storedQuery(), "new+words"_q);
    EXPECT_EQ(node->wordsRestriction(), 1);
    EXPECT_EQ(node->snapshot().fields._websiteRestriction, Empty);
}

TEST(QueryDefinition, AChangeToTheSameStoresNothing)
{
    const QueryCorePtr node = advanced();
    node->setQuery(Words); // Kept with its blank until a real change stores it.
    node->changeWithQuery(Words, 2, Site, Expression);
    EXPECT_EQ(node->storedQuery(), Words);
    node->changeWithQuery(Words, 2, Site, "other"_q);
    EXPECT_EQ(node->storedQuery(), "two+words"_q);
    EXPECT_EQ(node->urlRegularExpressions(), "other"_q);
}

TEST(QueryDefinition, ACombinedChangeKeepsTheJoinedText)
{
    const QueryCorePtr node = QueryCore::initWithAdvancedCombinedQuery({"a"_q}, 2, Site);
    node->changeWithCombinedQuery({}, 1, Empty);
    EXPECT_EQ(node->searchType(), 2);
    node->changeWithCombinedQuery({"b"_q, "c"_q}, 1, Empty, Expression);
    EXPECT_EQ(node->storedQuery(), " a"_q);
    EXPECT_EQ(node->combinedQueries(), QStringList({"b"_q, "c"_q}));
    EXPECT_TRUE(node->isAdvancedQuery() && node->queryChanged());
    EXPECT_EQ(node->urlRegularExpressions(), Expression);
}

TEST(QueryDefinition, AnUpdateIsNotSwappedInAfterAnyStoredChange)
{
    const ResultRecord record = recordNamed("a"_q);
    const QueryCorePtr node = queryWith({record, record, record, record});
    const std::vector<std::function<void()>> changes = {
        [&] { node->markItemAsRead(record); },  [&] { (void)node->setRating(2, record); },
        [&] { node->setHidden(true, record); }, [&] { node->markAllItemAsRead(); },
        [&] { node->setTitle(Words); },         [&] { node->setEnabled(false); },
        [&] { node->setCheckBlacklist(true); }, [&] { node->changeWithQuery(Words, 1, Site); },
        [&] { node->excludeURLString(Site); },  [&] { node->includeHost(Site); },
        [&] { node->setQuery(Words); },         [&] { (void)node->resultsSortedBy(5); },
        [&] { node->removeResults(); },
    };
    for (std::size_t i = 0; i < changes.size(); ++i) {
        const std::uint64_t before = node->snapshot().generation;
        changes[i]();
        EXPECT_FALSE(node->replaceResultsIfUnchanged(before, {}, Date(5))) << "change " << i;
    }
    EXPECT_NE(node->date(), Date(5));
    EXPECT_TRUE(node->replaceResultsIfUnchanged(node->snapshot().generation, {}, Date(5)));
    EXPECT_EQ(node->date(), Date(5));
}

TEST(QueryDefinition, DescribesANodeInOneText)
{
    const QueryCorePtr node = QueryCore::initWithQuery(Words);
    const QString text = node->description();
    EXPECT_TRUE(text.startsWith("<QueryCore: 0x"_q)) << text.toStdString();
    EXPECT_TRUE(text.contains("> [1]\ntwo+words, last update: 2001-01-01 "_q)) << text.toStdString();
    EXPECT_TRUE(text.endsWith(". Number of Results: 0 (%1)"_q.arg(node->UUID()))) << text.toStdString();
}

} // namespace quarry
