// The agent second by second: schedule, menu, icon, list and notification.

#include "agent/AgentRig.h"

using namespace quarry;
using namespace quarry::test;
using namespace Qt::Literals::StringLiterals;

namespace {

const auto UpdaterOpened = u"open QuarrySpotterUpdater.app"_s;

class AgentTicks : public AgentRig {
protected:
    [[nodiscard]] qsizetype launches() const { return notes.count(UpdaterOpened); }
    /// An updater application that runs for so many seconds from its start.
    void refresh(int seconds)
    {
        startUpdater();
        pass(seconds);
        endUpdater();
    }
};

TEST_F(AgentTicks, ADueRefreshIsStartedOnceAndTheNextCountsFromItsEnd)
{
    menu();
    pass(299);
    EXPECT_EQ(launches(), 0);
    EXPECT_EQ(statusItem.menu(), u"1 min (refresh open)"_s);
    pass(2);
    EXPECT_EQ(launches(), 1);
    refresh(1500);
    EXPECT_EQ(launches(), 1) << "longer than the period";
    EXPECT_EQ(statusItem.menu(), u"updating ( open)"_s);
    pass(1);
    EXPECT_EQ(statusItem.menu(), u"9 min (refresh open)"_s) << "ten from the last second of it";
    pass(598);
    EXPECT_EQ(launches(), 1);
    pass(3);
    EXPECT_EQ(launches(), 2);
}

TEST_F(AgentTicks, AnOverdueOneWaitsForTheMainApplicationToQuit)
{
    menu();
    startMainApp();
    pass(3000);
    EXPECT_EQ(launches(), 0);
    EXPECT_EQ(statusItem.menu(), u"disabled ()"_s);
    endMainApp();
    pass(1);
    EXPECT_EQ(launches(), 1);
}

TEST_F(AgentTicks, AnUpdaterThatCannotBeStartedIsReportedAndTriedWhenTheNextIsDue)
{
    schedule({{u"pref_lastUpdate"_s, 0.0}});
    workspace.works = false;
    menu();
    pass(60);
    EXPECT_EQ(launches(), 1);
    ASSERT_EQ(productLog.lines.size(), 1);
    EXPECT_TRUE(productLog.lines.first().contains(u"could not be started"_s));
    pass(600);
    EXPECT_EQ(launches(), 2);
}

TEST_F(AgentTicks, ARefreshIsStartedFromTheMenu)
{
    menu();
    statusItem.choose(Tag::Refresh);
    EXPECT_EQ(statusItem.menu(), u"updating ( open)"_s);
    timers.runPosted();
    EXPECT_EQ(launches(), 1);
    refresh(30);
    pass(1);
    EXPECT_EQ(statusItem.menu(), u"9 min (refresh open)"_s) << "the due time was pushed back";
}

TEST_F(AgentTicks, UnreadResultsBlinkAndAreListedOnce)
{
    menu();
    pass(10);
    EXPECT_EQ(statusItem.icons.right(10), u".........."_s);
    results.queries = {{2, u"green tea"_s, {}}};
    pass(7);
    ASSERT_TRUE(statusItem.info);
    EXPECT_EQ(*statusItem.info, u"\n2 for green tea"_s);
    results.queries.append({1, u"knots"_s, {}});
    statusItem.icons.clear();
    pass(20);
    EXPECT_TRUE(statusItem.icons.contains(u"*.*.*.*.*.*.*.*.*"_s)) << statusItem.icons.toStdString();
    EXPECT_EQ(statusItem.infosSet, 1) << "what it lists is not changed while it is there";
    EXPECT_EQ(notifications.bodies, QStringList{u"\n2 for green tea"_s});

    results.queries.clear();
    pass(7);
    EXPECT_FALSE(statusItem.info);
    EXPECT_TRUE(statusItem.icons.endsWith(u'.'));
}

TEST_F(AgentTicks, TheListGoesDuringARefreshAndComesBackFresh)
{
    results.queries = {{1, u"tea"_s, {}}};
    menu();
    pass(1);
    EXPECT_EQ(notifications.bodies.size(), 1);
    results.queries = {{5, u"tea"_s, {}}};
    pass(300);
    EXPECT_EQ(launches(), 1);
    EXPECT_TRUE(notifications.shown.isEmpty()) << "removed when the refresh starts";
    startUpdater();
    pass(100);
    EXPECT_FALSE(statusItem.info);
    EXPECT_EQ(notifications.bodies.size(), 1) << "none during a refresh";
    EXPECT_TRUE(statusItem.icons.endsWith(u"*.*."_s) || statusItem.icons.endsWith(u".*.*"_s));
    endUpdater();
    pass(2);
    EXPECT_EQ(statusItem.info, u"\n5 for tea"_s);
    EXPECT_EQ(notifications.bodies.last(), u"\n5 for tea"_s);
    startMainApp();
    pass(1);
    EXPECT_FALSE(statusItem.info) << "nor while the main application is open";
    EXPECT_TRUE(notifications.shown.isEmpty());
    EXPECT_TRUE(statusItem.icons.endsWith(u'.'));
}

TEST_F(AgentTicks, GoOnWhileTheDatabaseIsReadAndShowNoOldList)
{
    results.queries = {{1, u"tea"_s, {}}};
    menu();
    pass(2);
    ASSERT_TRUE(statusItem.info);
    results.takesLong = true;
    pass(6);
    const int looks = results.looks;
    results.queries = {{5, u"tea"_s, {}}};
    statusItem.icons.clear();
    statusItem.choose(Tag::Refresh);
    refresh(30);
    pass(20);
    EXPECT_EQ(results.looks, looks + 1) << "for the list; the one before it has not ended yet";
    EXPECT_EQ(statusItem.icons.size(), 50);
    EXPECT_TRUE(statusItem.icons.contains(u"*.*.*.*.*.*.*.*.*.*.*.*.*"_s)) << statusItem.icons.toStdString();
    results.endLook();
    EXPECT_FALSE(statusItem.info) << "what was found before the refresh";
    results.endLook();
    EXPECT_EQ(statusItem.info, u"\n5 for tea"_s);
}

TEST_F(AgentTicks, AListThatComesTooLateIsNotShown)
{
    results.queries = {{1, u"tea"_s, {}}};
    results.takesLong = true;
    menu();
    results.endLook();
    pass(1);
    startMainApp();
    pass(1);
    results.endLook(); // What the blinking icon asked for.
    EXPECT_FALSE(statusItem.info) << "the main application is open";

    results.queries.clear();
    distributed.post(u"kAppWillQuitNotification"_s, {});
    endMainApp();
    statusItem.icons.clear();
    pass(3);
    results.endLook();
    pass(1);
    results.endLook();
    EXPECT_EQ(statusItem.icons, u"...."_s) << "all was read, which takes a while to be seen";

    results.queries = {{1, u"tea"_s, {}}};
    pass(6);
    results.endLook();
    pass(1);
    statusItem.choose(Tag::Refresh);
    results.endLook();
    EXPECT_FALSE(statusItem.info) << "a refresh runs";
    EXPECT_EQ(notifications.bodies, QStringList());
}

TEST_F(AgentTicks, NoNotificationIsAddedToOneThatIsStillThere)
{
    results.queries = {{1, u"tea"_s, {}}};
    menu();
    pass(2);
    results.queries.clear();
    pass(7);
    EXPECT_FALSE(statusItem.info);
    results.queries = {{3, u"knots"_s, {}}};
    pass(7);
    EXPECT_TRUE(statusItem.info);
    EXPECT_EQ(notifications.bodies.size(), 1);

    takeNotes();
    notifications.click(notifications.shown.first());
    EXPECT_EQ(takeNotes(), QStringList{u"open QuarrySpotter.app"_s});
    EXPECT_TRUE(notifications.shown.isEmpty());
}

TEST_F(AgentTicks, AskLittleAndTouchTheMenuOnlyForAChange)
{
    schedule({{u"pref_checkForUpdates"_s, false}});
    menu();
    const int readings = processes.readings;
    const int looks = results.looks;
    const int titles = statusItem.titlesSet;
    pass(120);
    EXPECT_EQ(processes.readings, readings + 120) << "one reading of the process table a tick";
    EXPECT_EQ(results.looks, looks + 20) << "the database every sixth second";
    EXPECT_EQ(statusItem.titlesSet, titles + 2) << "5, 4, 3 minutes";
    EXPECT_EQ(files.replacements, 0);
    EXPECT_EQ(updates.checks, 0) << "not wanted";
}

} // namespace
