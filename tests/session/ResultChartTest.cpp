#include "session/ResultChart.h"

#include "session/ChartLoader.h"
#include "support/ManualTimers.h"
#include "support/SettableClock.h"

#include <QDateTime>

#include <gtest/gtest.h>

using namespace quarry;
using namespace quarry::test;
using namespace Qt::Literals::StringLiterals;

namespace {

const QTimeZone Berlin("Europe/Berlin");

Date at(const QString& localTime, const QTimeZone& zone = Berlin)
{
    const QDateTime local = QDateTime::fromString(localTime, Qt::ISODate);
    return Date::fromUnixSeconds(double(QDateTime(local.date(), local.time(), zone).toMSecsSinceEpoch()) / 1000.0);
}

ResultRecord found(const QString& localTime, const char* engine, const QTimeZone& zone = Berlin)
{
    return ResultRecord()
        .withLinkUuid(localTime)
        .withEngineId(QString::fromLatin1(engine))
        .withDateOfFind(at(localTime, zone));
}

QueryCorePtr queryWith(const ResultList& visible, const ResultList& hidden = {})
{
    const QueryCorePtr query = QueryCore::initWithQuery(u"pond"_s);
    query->restoreResults(visible, hidden);
    return query;
}

/// "27/10: 2" of each day that brought something.
QStringList told(const ResultChart& chart)
{
    QStringList lines;
    for (const ResultChart::Day& day : chart.days) {
        if (day.results > 0)
            lines.append(u"%1: %2"_s.arg(day.date.toString(u"d/M"_s)).arg(day.results));
    }
    return lines;
}

TEST(ResultChartTest, CountsTheDaysOfTheCalendarAndTheServicesBelowAFolder)
{
    const QueryCorePtr folder = QueryCore::initWithQueryFolder(u"Garden"_s);
    folder->addChild(queryWith({found(u"2024-11-05T09:00:00"_s, "1"), found(u"2024-11-04T23:59:59"_s, "2"),
                                found(u"2024-10-07T00:00:00"_s, "2"), found(u"2024-10-06T23:59:59"_s, "2"),
                                found(u"2024-11-06T00:00:01"_s, "2"), ResultRecord().withRank(1)},
                               {found(u"2024-11-05T00:00:00"_s, "5")}));
    folder->addChild(queryWith({found(u"2024-11-05T23:00:00"_s, "1")}));

    const ResultChart chart = ResultChart::of(folder, at(u"2024-11-05T12:00:00"_s), Berlin);
    ASSERT_EQ(chart.days.size(), ResultChart::DayCount);
    EXPECT_EQ(chart.days.first().date, QDate(2024, 10, 7));
    EXPECT_EQ(told(chart), (QStringList{u"7/10: 1"_s, u"4/11: 1"_s, u"5/11: 3"_s}))
        << "what was found before the days, or by a clock that is ahead, is in none of them";
    EXPECT_EQ(chart.resultsOfDays(), 5);
    EXPECT_EQ(chart.most(), 3);
    QStringList shares;
    for (const ResultChart::Share& share : chart.services)
        shares.append(u"%1: %2"_s.arg(share.engineId).arg(share.results));
    EXPECT_EQ(shares, (QStringList{u"2: 4"_s, u"1: 2"_s, u": 1"_s, u"5: 1"_s}));

    const ResultChart::Cancelled cancelled{true};
    EXPECT_TRUE(ResultChart::of(folder, Date(), Berlin, &cancelled).days.isEmpty());
    EXPECT_EQ(ResultChart::of(nullptr, Date(), Berlin).resultsOfServices(), 0);
}

TEST(ResultChartTest, KnowsDaysOf23And25Hours)
{
    struct Case {
        const char* zone;
        const char* first; ///< Times that belong to different days, a second apart.
        const char* second;
        QStringList told;
    };
    const Case cases[] = {
        {"Europe/Berlin", "2024-03-31T23:59:59", "2024-04-01T00:00:00", {u"31/3: 1"_s, u"1/4: 1"_s}},
        {"Europe/Berlin", "2024-10-27T23:59:59", "2024-10-28T00:00:00", {u"27/10: 1"_s, u"28/10: 1"_s}},
        // Here the clocks are put forward at midnight: the day begins at one o'clock.
        {"America/Asuncion", "2023-09-30T23:59:59", "2023-10-01T01:00:00", {u"30/9: 1"_s, u"1/10: 1"_s}},
    };
    for (const Case& each : cases) {
        const QTimeZone zone(each.zone);
        const QString second = QString::fromLatin1(each.second);
        const QueryCorePtr query =
            queryWith({found(QString::fromLatin1(each.first), "1", zone), found(second, "1", zone)});
        EXPECT_EQ(told(ResultChart::of(query, at(second.left(11) + u"20:00:00"_s, zone), zone)), each.told)
            << each.zone << ' ' << each.second;
    }
}

TEST(ChartLoaderTest, AnswersTheLatestRequestOnly)
{
    ManualTimers timers;
    SettableClock clock;
    QList<qint64> answers;
    ChartLoader loader(timers, clock,
                       [&answers](const ResultChart& chart) { answers.append(chart.resultsOfServices()); });
    loader.load(queryWith({ResultRecord().withLinkUuid(u"a"_s)}));
    loader.load(queryWith({ResultRecord().withLinkUuid(u"a"_s), ResultRecord().withLinkUuid(u"b"_s)}));
    ASSERT_TRUE(timers.runUntil([&answers] { return !answers.isEmpty(); }));
    EXPECT_EQ(answers, QList<qint64>{2});
}

} // namespace
