#include "model/ResultComparator.h"

#include "model/ModelTestSupport.h"

#include <random>

namespace quarry {

namespace {

using R = ResultRecord;

R dated(double seconds)
{
    return R().withDateOfFind(Date(seconds));
}

R addressed(const QString& address)
{
    return R().withUrl(Url::fromStored(address));
}

const QString Upper = "Z"_q;
const QString Lower = "a"_q;
/// A private-use character of one unit, and a character of two units, the first of which is smaller.
const QString OneUnit = QString(QChar(0xE000));
const QString TwoUnits = QString::fromUcs4(U"\U0001F600");

ResultRecord randomRecord(std::mt19937& random)
{
    const auto roll = [&random](int sides) { return static_cast<int>(random() % static_cast<unsigned>(sides)); };
    R record = R().withLinkUuid(QString::number(random()));
    if (roll(3) != 0)
        record = record.withDateOfFind(Date(roll(20)));
    if (roll(3) != 0)
        record = record.withRank(roll(10));
    if (roll(2) != 0)
        record = record.withRating(roll(6));
    if (roll(3) != 0)
        record = record.withUserSaw(roll(2) != 0);
    if (roll(4) != 0)
        record = record.withTitle(QString::number(roll(30))).withUrl(Url::fromStored(QString::number(roll(30))));
    return record;
}

} // namespace

TEST(ResultComparator, AnswersAsEachOrderSays)
{
    const std::tuple<const char*, R, R, std::int32_t, int> cases[] = {
        {"1: oldest first", dated(1), dated(2), 1, -1},
        {"1: a missing date is the same", dated(1), R(), 1, 0},
        {"2: newest first", dated(1), dated(2), 2, 1},
        {"3: lowest rank first, whatever the dates", dated(1).withRank(1), dated(2).withRank(2), 3, -1},
        {"3: newest first without a rank", dated(1).withRank(1), dated(2), 3, 1},
        {"3: no rank and no date", R().withRank(1), dated(2), 3, 0},
        {"3: the read state does not matter", R().withRank(2).withUserSaw(false), R().withRank(1).withUserSaw(true), 3,
         1},
        {"4: read after unread", dated(9).withUserSaw(true), dated(1).withUserSaw(false), 4, 1},
        {"4: unread by absence before read", dated(1), dated(9).withUserSaw(true), 4, -1},
        {"4: same state, both entries", dated(1).withUserSaw(false), dated(2).withUserSaw(false), 4, 0},
        {"4: same state, one entry: newest first", dated(1).withUserSaw(false), dated(2), 4, 1},
        {"5: by address", addressed("http://a/"_q), addressed("http://b/"_q), 5, -1},
        {"5: a missing address is the same", addressed("http://a/"_q), R(), 5, 0},
        {"6: upper case before lower", R().withTitle(Upper), R().withTitle(Lower), 6, -1},
        {"6: by UTF-16 units", R().withTitle(TwoUnits), R().withTitle(OneUnit), 6, -1},
        {"6: a missing title is the same", R(), R().withTitle(Lower), 6, 0},
        {"7: highest rating first", R().withRating(5), R().withRating(3), 7, -1},
        {"7: rated, even 0, before unrated", R().withRating(0), dated(9), 7, -1},
        {"7: unrated after rated", dated(9), R().withRating(-1), 7, 1},
        {"7: both unrated: newest first", dated(1), dated(2), 7, 1},
        {"other: differing state: by rank", R().withRank(1).withUserSaw(true), R().withRank(2), 0, -1},
        {"other: differing state, no rank: newest first", dated(1).withUserSaw(true), dated(2), 8, 1},
        {"other: same state, both entries", dated(1).withUserSaw(true), dated(2).withUserSaw(true), -1, 0},
        {"other: same state, no entry: newest first", dated(1).withRank(1), dated(2).withRank(2), 0, 1},
    };
    for (const auto& [what, a, b, order, expected] : cases) {
        EXPECT_EQ(compareResults(a, b, order), expected) << what;
        EXPECT_EQ(compareResults(b, a, order), -expected) << what << ", the other way round";
    }
}

TEST(ResultComparator, SortsAnyListIntoAnOrderOfNeighbours)
{
    std::mt19937 random(20010101);
    for (int round = 0; round < 400; ++round) {
        const auto order = static_cast<std::int32_t>(random() % 9);
        ResultList records;
        for (auto i = random() % 70; i > 0; --i)
            records << randomRecord(random);
        ResultList sorted = records;
        sortResults(sorted, order);
        ASSERT_TRUE(std::is_permutation(sorted.begin(), sorted.end(), records.begin(), records.end()));
        for (qsizetype i = 1; i < sorted.size(); ++i)
            ASSERT_LE(compareResults(sorted.at(i - 1), sorted.at(i), order), 0) << "order " << order;
        const ResultList snapshot = sorted;
        EXPECT_FALSE(sortResults(sorted, order));
        EXPECT_TRUE(sorted.isSharedWith(snapshot)) << "a list that is in order is not touched";
    }
}

TEST(ResultComparator, KeepsEqualRecordsInTheirPlaces)
{
    ResultList records;
    for (int i = 0; i < 100; ++i)
        records << R().withRank(i % 3).withTitle(QString::number(i));
    sortResults(records, ByRank);
    const auto place = [&records](qsizetype i) {
        return *records.at(i).rank() * 1000 + records.at(i).title()->toInt();
    };
    for (qsizetype i = 1; i < records.size(); ++i)
        EXPECT_LT(place(i - 1), place(i));
}

} // namespace quarry
