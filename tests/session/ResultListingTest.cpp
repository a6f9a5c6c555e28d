#include "session/ResultListing.h"

#include "model/ResultComparator.h"
#include "session/ListingLoader.h"
#include "support/ManualTimers.h"

#include <gtest/gtest.h>

#include <optional>

using namespace quarry;
using namespace quarry::test;

namespace {

QueryCorePtr queryWith(const QString& text, const QStringList& titles, const QStringList& hidden = {})
{
    const auto records = [](const QStringList& names) {
        ResultList list;
        for (const QString& name : names)
            list.append(ResultRecord().withTitle(name).withLinkUuid(QStringLiteral("id-") + name));
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
    const QueryCorePtr folder = QueryCore::initWithQueryFolder(QStringLiteral("Garden"));
    const QueryCorePtr inner = QueryCore::initWithQueryFolder(QStringLiteral("Water"));
    const QueryCorePtr pond =
        queryWith(QStringLiteral("pond"), {QStringLiteral("d"), QStringLiteral("b")}, {QStringLiteral("h")});
    const QueryCorePtr bed = queryWith(QStringLiteral("bed"), {QStringLiteral("Crème"), QStringLiteral("a")});
    folder->addChild(inner);
    inner->addChild(pond);
    folder->addChild(bed);

    const ResultListing all = ResultListing::of(folder, ByTitle, false);
    EXPECT_EQ(titlesOf(all),
              (QStringList{QStringLiteral("Crème"), QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("d")}));
    EXPECT_EQ(all.queryUuid(all.row(0)), bed->UUID());
    EXPECT_EQ(all.queryUuid(all.row(2)), pond->UUID());
    EXPECT_EQ(all.placeOf(pond->UUID(), QStringLiteral("id-d")), 3);
    EXPECT_EQ(all.placeOf(bed->UUID(), QStringLiteral("id-d")), -1) << "it belongs to the other query";
    EXPECT_EQ(titlesOf(all.filtered(QStringLiteral("creme"))), QStringList{QStringLiteral("Crème")});
    EXPECT_EQ(all.filtered(QString()).size(), 4U);
    EXPECT_EQ(titlesOf(ResultListing::of(folder, ByAddress, true)), QStringList{QStringLiteral("h")});
    EXPECT_EQ(*pond->results()->first().title(), QStringLiteral("d")) << "the tree keeps its own order";

    const ResultListing::Cancelled cancelled{true};
    EXPECT_EQ(ResultListing::of(folder, ByTitle, false, &cancelled).size(), 0U);
    EXPECT_EQ(all.filtered(QStringLiteral("a"), &cancelled).size(), 0U);
}

TEST(ListingLoaderTest, FindsTheSameWhateverWasTypedBefore)
{
    // The syllable 가 and, as its jamos are typed one by one, 각: another letter, not a longer text.
    const QString ga = QStringLiteral("\u1100\u1161");
    const QString gak = ga + QStringLiteral("\u11a8");
    QStringList titles = {QStringLiteral("\uac01"), QStringLiteral("\uac00"), QStringLiteral("RAILWAY"),
                          QStringLiteral("Räil")};
    for (int i = 0; i < 4000; ++i)
        titles.append(QStringLiteral("rain %1").arg(i));
    const QueryCorePtr query = queryWith(QStringLiteral("pond"), titles);
    const ResultListing all = ResultListing::of(query, ByTitle, false);

    ManualTimers timers;
    std::optional<ResultListing> shown;
    ListingLoader loader(timers, [&shown](ResultListing listing) { shown = std::move(listing); });
    for (const QString& search :
         {QString(), QStringLiteral("r"), QStringLiteral("rai"), QStringLiteral("rail"), QStringLiteral("ra"),
          QStringLiteral("rain 39"), QStringLiteral("39"), ga, gak, ga, QString()}) {
        shown.reset();
        loader.load({query, ByTitle, false, search, 4004});
        ASSERT_TRUE(timers.runUntil([&shown] { return shown.has_value(); }));
        EXPECT_EQ(titlesOf(*shown), titlesOf(all.filtered(search))) << qPrintable(search);
    }
}

} // namespace
