// The agent's rules on their own: texts, process look-up, schedule file, one tick.

#include "agent/AgentRig.h"
#include "agent/Countdown.h"
#include "agent/NewResultsText.h"

#include <limits>

using namespace quarry;
using namespace quarry::test;
using namespace Qt::Literals::StringLiterals;

namespace {

TEST(AgentTexts, TheCountdownReadsWholeMinutesAndHours)
{
    const TemporaryHome home;
    const StringTable texts = shortTexts(home.path());
    const struct {
        double minutes;
        QString title;
    } cases[] = {{45.9, u"45 min"_s},  {60.0, u"1 h"_s},
                 {59.99, u"59 min"_s}, {90.0, u"1 h"_s},
                 {119.9, u"1 h"_s},    {1439.0, u"23 h"_s},
                 {1440.0, u"1 min"_s}, {1e12, u"1 min"_s},
                 {0.5, u"1 min"_s},    {1.0, u"1 min"_s},
                 {2.0, u"2 min"_s},    {-5.0, u"1 min"_s},
                 {-1e300, u"1 min"_s}, {std::numeric_limits<double>::quiet_NaN(), u"1 min"_s}};
    for (const auto& [minutes, title] : cases)
        EXPECT_EQ(countdownTitle(minutes * 60.0, texts), title) << minutes;
    // A key begins with a number, which must not be taken for a text that was translated to one.
    EXPECT_EQ(countdownTitle(1440 * 60.0, StringTable()), u"100_Update menu string format"_s);
    const QString folder = home.path() + u"/few"_s;
    ASSERT_TRUE(QDir().mkpath(folder + u"/English.lproj"_s));
    ASSERT_TRUE(writeFile(folder + u"/English.lproj/Localizable.strings"_s,
                          plistOf({{u"100_Update menu string format"_s, u"%@ %@"_s}})));
    EXPECT_EQ(countdownTitle(1440 * 60.0, StringTable(folder, {})), u"1 100_Minutes"_s);
}

TEST(AgentTexts, NewResultsAreListedWithTheTitleAtTheEnd)
{
    const TemporaryHome home;
    const InfoText info = newResultsText({{0, u"nothing new"_s, {}},
                                          {1, u"green tea"_s, {}},
                                          {12, u"50%@ %1 \U0001F375"_s, {}},
                                          {-1, u"less than nothing"_s, {}}},
                                         shortTexts(home.path()));
    EXPECT_EQ(info.heading, u"New"_s);
    EXPECT_EQ(info.body(), u"\n1 of green tea\n12 for 50%@ %1 \U0001F375"_s);
    ASSERT_EQ(info.lines.size(), 2U);
    EXPECT_EQ(info.lines[0].titleLength, 9);
    EXPECT_EQ(info.lines[1].text.right(info.lines[1].titleLength), u"50%@ %1 \U0001F375"_s);
}

TEST(AgentProcesses, AreFoundByTheSixteenCharactersThatAreKept)
{
    const ProcessSnapshot processes =
        std::vector<ProcessRecord>{{u"QuarrySpotter"_s, 10, 1000, false},    {u"QuarrySpotterUpd"_s, 11, 1000, false},
                                   {u"quarryspotterupd"_s, 12, 1000, false}, {u"QuarrySpotterUp"_s, 13, 0, true},
                                   {u"QuarrySpotterUp"_s, 14, 0, false},     {u"QuarrySpott"_s, 15, 0, true}};
    const auto ids = [](const QString& name, const ProcessSnapshot& table) {
        QStringList found;
        for (const DaemonInfo& info : processInfoForDaemonNamed(name, table).value_or(QList<DaemonInfo>()))
            found.append(QString::number(info.daemonPID));
        return found.join(u',');
    };
    EXPECT_EQ(ids(u"QuarrySpotter"_s, processes), u"10"_s);
    EXPECT_EQ(ids(u"QuarrySpotterUpdater"_s, processes), u"11,13"_s);
    EXPECT_EQ(processInfoForDaemonNamed(u"QuarrySpotterUpdater"_s, processes)->first().daemonName,
              u"QuarrySpotterUpd"_s);
    for (const QString& name : {u"QuarrySpotterUpda"_s.left(3), u"other"_s, QString()})
        EXPECT_FALSE(processInfoForDaemonNamed(name, processes));
    EXPECT_FALSE(processInfoForDaemonNamed(u"QuarrySpotter"_s, std::nullopt));
    EXPECT_FALSE(processInfoForDaemonNamed(u"QuarrySpotter"_s, std::vector<ProcessRecord>()));
    EXPECT_EQ(copiesRunning(u"QuarrySpotterUpdater"_s, processes), 3);
    EXPECT_EQ(copiesRunning(u"quarryspotter"_s, processes), 1);
    EXPECT_EQ(copiesRunning(u"quarryspotter"_s, std::nullopt), 0);
}

class AgentScheduleFile : public ::testing::Test {
protected:
    TemporaryHome home;
    DiskFileStore files;
    const Date now{800000000.0};
};

TEST_F(AgentScheduleFile, SaysWhenTheFirstRefreshIsDue)
{
    const double second = now.secondsSinceReference();
    const struct {
        QString name;
        PlistValue minutes;
        PlistValue lastUpdate;
        qint64 periodicity;
        double untilLaunch;
    } cases[] = {
        {u"no period"_s, 0, second - 60.0, 1800, 1740.0},
        {u"one minute"_s, 1, second - 20.0, 60, 40.0},
        {u"exactly a period ago"_s, 10, second - 600.0, 600, 0.0},
        {u"overdue"_s, 10, second - 86400.0, 600, 0.0},
        {u"a negative period"_s, -5, second - 60.0, 1800, 1740.0},
        {u"a huge period"_s, std::numeric_limits<qint64>::max(), second - 60.0, 60000000, 59999940.0},
        {u"a text as period"_s, u"soon"_s, second - 60.0, 1800, 1740.0},
        {u"a clock that was an hour ahead"_s, 10, second + 3600.0, 600, 4200.0},
        {u"a clock that was years ahead"_s, 10, second + 3e8, 600, 0.0},
        {u"a text as date"_s, 10, u"yesterday"_s, 600, 0.0},
        {u"no number as date"_s, 10, std::numeric_limits<double>::quiet_NaN(), 600, 0.0},
    };
    for (const auto& c : cases) {
        ASSERT_TRUE(writeFile(home->scheduleFile(), plistOf({{u"pref_automatic_ON"_s, true},
                                                             {u"pref_automatic_periodicity"_s, c.minutes},
                                                             {u"pref_lastUpdate"_s, c.lastUpdate}})));
        const AgentSchedule schedule = AgentSchedule::read(Schedule(home, files), now);
        EXPECT_TRUE(schedule.automatic) << c.name.toStdString();
        EXPECT_EQ(schedule.periodicity, c.periodicity) << c.name.toStdString();
        EXPECT_EQ(schedule.firstLaunch(now).secondsSince(now), c.untilLaunch) << c.name.toStdString();
    }
}

TEST_F(AgentScheduleFile, OfNonsenseAsksForNothing)
{
    for (const QByteArray& nonsense :
         {QByteArray("nonsense"), QByteArray(), plistOf({{u"pref_automatic_ON"_s, u"yes"_s}}),
          QByteArray("<plist version=\"1.0\"><array/></plist>")}) {
        ASSERT_TRUE(writeFile(home->scheduleFile(), nonsense));
        const AgentSchedule schedule = AgentSchedule::read(Schedule(home, files), now);
        EXPECT_TRUE(schedule.exists);
        EXPECT_FALSE(schedule.automatic);
        EXPECT_EQ(schedule.fault.isEmpty(), nonsense.contains("pref_automatic_ON"));
    }
}

TEST(AgentTick, FollowsAClockThatJumps)
{
    AgentState state;
    state.periodicity = 600;
    Date now(800000000.0);
    state.nextLaunch = now.plusSeconds(300);
    const auto tick = [&](double later, bool updaterRuns = false) {
        now = now.plusSeconds(later);
        return decideTick(state, {now, false, updaterRuns});
    };
    EXPECT_FALSE(tick(1).launchUpdater);
    EXPECT_TRUE(tick(3 * 86400.0).launchUpdater) << "woken after three days";
    EXPECT_FALSE(tick(1).launchUpdater) << "once, not once for each that was missed";

    EXPECT_FALSE(tick(-4 * 365 * 86400.0).launchUpdater) << "put back by years";
    EXPECT_EQ(state.nextLaunch->secondsSince(now), 600.0);
    EXPECT_EQ(state.previousLoop, now) << "the database is not forgotten for years either";

    state.nextLaunch = std::nullopt;
    EXPECT_TRUE(tick(1).launchUpdater);
    EXPECT_FALSE(tick(1, true).launchUpdater);
}

} // namespace
