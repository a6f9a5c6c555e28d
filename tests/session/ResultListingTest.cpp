#include "session/ResultListing.h"

#include "model/ResultComparator.h"
#include "session/ListingLoader.h"
#include "support/ManualTimers.h"

#include <gtest/gtest.h>

#include <optional>

using namespace quarry;
using namespace quarry::test;
using namespace Qt::Literals::StringLiterals;

namespace {

QueryCorePtr queryWith(const QString& text, const QStringList& titles, const QStringList& hidden = {})
{
    const auto records = [](const QStringList& names) {
        ResultList list;
        for (const QString& name : names)
            list.append(ResultRecord().withTitle(name).withLinkUuid(u"id-"_s + name));
        return list;
    };
    const QueryCorePtr query = QueryCore::initWithQuery(text);
    query->restoreResults(records(titles), records(hidden));
    return query;
}

QStringList titlesOf(const ResultListing& listing)
{
    QStringList titles;
    for (std::size_t i = 0; i < listing.size(); ++i)
        titles.append(*listing.row(i).record.title());
    return titles;
}

TEST(ResultListingTest, ListsAFolderInOneOrderAndKnowsWhoseEachResultIs)
{
    const QueryCorePtr folder = QueryCore::initWithQueryFolder(u"Garden"_s);
    const QueryCorePtr inner = QueryCore::initWithQueryFolder(u"Water"_s);
    const QueryCorePtr pond = queryWith(u"pond"_s, {u"d"_s, u"b"_s}, {u"h"_s});
    const QueryCorePtr bed = queryWith(u"bed"_s, {u"Crème"_s, u"a"_s});
    folder->addChild(inner);
    inner->addChild(pond);
    folder->addChild(bed);

    const ResultListing all = ResultListing::of(folder, ByTitle, false);
    EXPECT_EQ(titlesOf(all), (QStringList{u"Crème"_s, u"a"_s, u"b"_s, u"d"_s}));
    EXPECT_EQ(all.queryUuid(all.row(0)), bed->UUID());
    EXPECT_EQ(all.queryUuid(all.row(2)), pond->UUID());
    EXPECT_EQ(all.placeOf(pond->UUID(), u"id-d"_s), 3);
    EXPECT_EQ(all.placeOf(bed->UUID(), u"id-d"_s), -1) << "it belongs to the other query";
    EXPECT_EQ(titlesOf(all.filtered(u"creme"_s)), QStringList{u"Crème"_s});
    EXPECT_EQ(all.filtered(QString()).size(), 4U);
    EXPECT_EQ(titlesOf(ResultListing::of(folder, ByAddress, true)), QStringList{u"h"_s});
    EXPECT_EQ(*pond->results()->first().title(), u"d"_s) << "the tree keeps its own order";

    const ResultListing::Cancelled cancelled{true};
    EXPECT_EQ(ResultListing::of(folder, ByTitle, false, &cancelled).size(), 0U);
    EXPECT_EQ(all.filtered(u"a"_s, &cancelled).size(), 0U);
}

TEST(ListingLoaderTest, FindsTheSameWhateverWasTypedBefore)
{
    // The syllable 가 and, as its jamos are typed one by one, 각: another letter, not a longer text.
    const QString ga = u"\u1100\u1161"_s;
    const QString gak = ga + u"\u11a8"_s;
    QStringList titles = {u"\uac01"_s, u"\uac00"_s, u"RAILWAY"_s, u"Räil"_s};
    for (int i = 0; i < 4000; ++i)
        titles.append(u"rain %1"_s.arg(i));
    const QueryCorePtr query = queryWith(u"pond"_s, titles);
    const ResultListing all = ResultListing::of(query, ByTitle, false);

    ManualTimers timers;
    std::optional<ResultListing> shown;
    ListingLoader loader(timers, [&shown](ResultListing listing) { shown = std::move(listing); });
    for (const QString& search :
         {QString(), u"r"_s, u"rai"_s, u"rail"_s, u"ra"_s, u"rain 39"_s, u"39"_s, ga, gak, ga, QString()}) {
        shown.reset();
        loader.load({query, ByTitle, false, search, 4004});
        ASSERT_TRUE(timers.runUntil([&shown] { return shown.has_value(); }));
        EXPECT_EQ(titlesOf(*shown), titlesOf(all.filtered(search))) << qPrintable(search);
    }
}

} // namespace
