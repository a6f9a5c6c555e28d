// How the agent starts, restarts and leaves, and what other programs ask of it.

#include "agent/AgentRig.h"

using namespace quarry;
using namespace quarry::test;
using namespace Qt::Literals::StringLiterals;

namespace {

using AgentLife = AgentRig;

TEST_F(AgentLife, StartsBecomesALoginItemAndCountsDown)
{
    menu();
    EXPECT_EQ(takeNotes(), QStringList{u"status item"_s});
    ASSERT_EQ(loginItems.list.size(), 1);
    EXPECT_EQ(loginItems.list.first().path, bundles.agent());
    EXPECT_EQ(statusItem.menu(), u"5 min (refresh open)"_s);
    EXPECT_TRUE(statusItem.enabled[Tag::Quit]);
    EXPECT_EQ(contentOf(home->agentLockFile()), "4711");
    EXPECT_EQ(AgentLock::holder(home), 4711);
}

TEST_F(AgentLife, StartsQuietlyWhileTheMainApplicationIsOpen)
{
    startMainApp();
    results.queries = {{1, u"tea"_s, {}}};
    menu();
    EXPECT_EQ(statusItem.menu(), u"disabled ()"_s);
    EXPECT_TRUE(menu().state().previousAppState);
    EXPECT_EQ(results.looks, 0);
}

TEST_F(AgentLife, LeavesWhereItIsNotWantedAndTakesItsLoginItemAlong)
{
    const struct {
        QByteArray file;
        bool keepsLoginItem;
    } cases[] = {{plistOf({{u"pref_automatic_ON"_s, false}}), false},
                 {plistOf({{u"pref_automatic_ON"_s, u"perhaps"_s}}), false},
                 {"half a file, just being written", true}};
    for (const auto& c : cases) {
        ASSERT_TRUE(writeFile(home->scheduleFile(), c.file));
        loginItems.list = {{u"QuarrySpotterAgent"_s, bundles.agent(), false, u"own"_s}};
        QSMenu menu(parts());
        EXPECT_FALSE(menu.mustLaunchMenu());
        menu.awakeFromNib();
        EXPECT_EQ(takeNotes(), QStringList{u"terminate"_s}) << c.file.toStdString();
        EXPECT_EQ(!loginItems.list.isEmpty(), c.keepsLoginItem) << c.file.toStdString();
    }
    ASSERT_TRUE(QFile::remove(home->scheduleFile()));
    menu();
    EXPECT_TRUE(hasLeft());
    pass(60);
    EXPECT_EQ(statusItem.titlesSet, 0) << "no timer was made";
}

TEST_F(AgentLife, OfTwoThatStartTogetherOneStays)
{
    processes.start(u"quarryspotterage"_s, 4712);
    QSMenu second(parts());
    menu();
    second.awakeFromNib();
    pass(3);
    EXPECT_EQ(takeNotes(), QStringList{u"terminate"_s}) << "the one without the lock";
    processes.end(4712);
    pass(1);
    EXPECT_EQ(takeNotes(), QStringList{u"status item"_s});
}

TEST_F(AgentLife, LeavesToAnAgentOfAnotherHomeFolder)
{
    processes.start(u"QuarrySpotterAge"_s, 4712);
    menu();
    pass(5);
    EXPECT_EQ(takeNotes(), QStringList());
    pass(20);
    EXPECT_EQ(takeNotes(), QStringList{u"terminate"_s});
}

TEST_F(AgentLife, StaysWhereProcessesCannotBeRead)
{
    processes.readable = false;
    menu();
    pass(2);
    EXPECT_EQ(takeNotes(), QStringList{u"status item"_s});
}

TEST_F(AgentLife, EndsWithItsBundleAndInterruptsTheUpdater)
{
    startUpdater();
    menu();
    pass(3);
    EXPECT_FALSE(hasLeft());
    ASSERT_TRUE(QFile::remove(bundles.agent() + u"/Contents/Resources/appicon.icns"_s));
    takeNotes();
    pass(1);
    timers.advance(std::chrono::milliseconds(10));
    EXPECT_EQ(takeNotes(), (QStringList{u"interrupt 200"_s, u"terminate"_s}));
    EXPECT_TRUE(menu().mustQuitMenu());
    pass(10);
    EXPECT_EQ(takeNotes(), QStringList()) << "nothing happens after the end";
}

TEST_F(AgentLife, RestartsItselfOncePerPeriodAndNeverInTheWay)
{
    QSMenu& agent = menu();
    updates.showsWindow = true;
    agent.autoRelaunchDaemon();
    updates.showsWindow = false;
    startMainApp();
    agent.autoRelaunchDaemon();
    agent.autoRelaunchDaemon();
    pass(600); // The refresh that became due starts as soon as the main application has quit.
    takeNotes();
    endMainApp();
    startUpdater();
    pass(60);
    EXPECT_EQ(takeNotes(), QStringList{u"open QuarrySpotterUpdater.app"_s});
    endUpdater();
    pass(6);
    EXPECT_EQ(takeNotes(), (QStringList{u"launch RelaunchApp"_s, u"terminate"_s}));
    EXPECT_EQ(workspace.launched, (QStringList{bundles.agent(), u"4711"_s}));
}

TEST_F(AgentLife, CarriesOnWithoutTheRestartHelper)
{
    schedule({{u"pref_automatic_periodicity"_s, 1000}});
    menu();
    ASSERT_TRUE(QFile::remove(bundles.helper()));
    pass(13199);
    EXPECT_TRUE(log.isEmpty());
    pass(1);
    EXPECT_EQ(log, QStringList{u"QSMenu::autoRelaunchDaemon: relaunch path error."_s});
    EXPECT_FALSE(hasLeft());
}

TEST_F(AgentLife, HearsTheOtherPrograms)
{
    results.queries = {{1, u"tea"_s, {}}};
    QSMenu& agent = menu();
    startMainApp();
    pass(1);
    EXPECT_FALSE(agent.state().blink);
    results.queries.clear();
    endMainApp();
    const int looks = results.looks;
    distributed.post(u"kAppWillQuitNotification"_s, {});
    EXPECT_EQ(results.looks, looks) << "its last save is given time";
    pass(1);
    EXPECT_GT(results.looks, looks);
    distributed.post(u"QUIT_EVERYBODY_NOTIFICATION QS1"_s, {});
    EXPECT_TRUE(hasLeft());
    distributed.post(u"QUIT_EVERYBODY_NOTIFICATION QS1"_s, {});
    EXPECT_EQ(takeNotes().count(u"terminate"_s), 1);
}

TEST_F(AgentLife, ChecksForUpdatesOnceAndQuietly)
{
    menu();
    pass(19);
    EXPECT_EQ(updates.checks, 0);
    pass(60);
    EXPECT_EQ(updates.checks, 1);
    startMainApp();
    menu().delayedCheckUpdates();
    EXPECT_EQ(updates.checks, 1);
}

TEST_F(AgentLife, OffersANewVersionThroughTheMainApplication)
{
    menu();
    const auto announce = [this] { distributed.post(u"NEW_VERSION_AVAILABLE_NOTIFICATION QS1"_s, {}); };
    announce();
    ASSERT_TRUE(alerts.last) << "found by another program: nothing is known of it here";
    EXPECT_EQ(alerts.last->buttons.size(), 3);
    startMainApp();
    updates.version = u"1.3"_s;
    announce();
    EXPECT_EQ(updates.offered, QString()) << "the main application's business while it is open";
    endMainApp();
    announce();
    EXPECT_EQ(updates.offered, u"1.3"_s);
    takeNotes();
    updates.answer(0);
    EXPECT_FALSE(QFile::exists(home->updaterFlagFile()));
    updates.answer(1);
    EXPECT_TRUE(QFile::exists(home->updaterFlagFile()));
    EXPECT_EQ(takeNotes(), QStringList{u"open QuarrySpotter.app"_s});
}

TEST_F(AgentLife, OpensExportedFilesWithTheMainApplication)
{
    EXPECT_TRUE(menu().openFile(u"/tmp/a.b.qsexport"_s));
    EXPECT_EQ(takeNotes().last(), u"open /tmp/a.b.qsexport with QuarrySpotter.app"_s);
    EXPECT_FALSE(menu().openFile(u"/tmp/qsexport"_s));
    EXPECT_FALSE(menu().openFile(u"/tmp/a.txt"_s));
    workspace.works = false;
    EXPECT_FALSE(menu().openFile(u"/tmp/a.qsexport"_s));
}

TEST_F(AgentLife, ChosenItemsOpenAndQuit)
{
    menu();
    takeNotes();
    statusItem.choose(Tag::OpenApplication);
    workspace.works = false;
    statusItem.choose(Tag::OpenApplication);
    EXPECT_EQ(takeNotes(),
              (QStringList{u"open QuarrySpotter.app"_s, u"open QuarrySpotter.app"_s, u"without main application"_s}));
    statusItem.choose(Tag::Quit);
    ASSERT_TRUE(alerts.last);
    EXPECT_EQ(alerts.last->buttons.first(), u"100_QSMenu Quit button"_s);
    alerts.answer(1);
    EXPECT_FALSE(hasLeft());
    EXPECT_FALSE(menu().mustQuitMenu());
    alerts.answer(0);
    EXPECT_TRUE(hasLeft());
    EXPECT_TRUE(menu().mustQuitMenu());
}

} // namespace
