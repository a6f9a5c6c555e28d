// The agent as its users meet it: real processes under a real tray and a real notification server.

#include "apps/UpdaterRig.h"
#include "apps/desktop/AgentRigOnDesktop.h"

#include <QElapsedTimer>
#include <QJsonArray>

#include <csignal>

using namespace Qt::Literals::StringLiterals;

namespace quarry::test {
namespace {

const QColor Bubble(58, 87, 247);

bool menuShowsNews()
{
    return pixelsLike(Bubble, screenshot(), {}, 20) > 200;
}

class AgentAndServices : public AgentOnDesktop {
protected:
    /// Gives the updater a query, and services that do not answer.
    void holdServices()
    {
        services.hold("GET");
        ASSERT_EQ(quarry({u"services"_s, u"--at"_s, services.address("")}).status, 0);
        ASSERT_EQ(quarry({u"add"_s, u"starter"_s}).status, 0);
    }

    LoopbackServices services;
};

TEST_F(AgentOnDesktop, ADueRefreshIsMadeShownAndOpened)
{
    ASSERT_TRUE(QDir(home.path()).mkdir(u"documents"_s));
    ASSERT_TRUE(writeFile(home.path() + u"/documents/rye.md"_s, "# Rye starter\n\nFeeding a rye starter.\n"));
    ASSERT_TRUE(writeFile(home.path() + u"/documents/wheat.md"_s, "# Wheat starter\n\nA starter of wheat.\n"));
    ASSERT_TRUE(writeFile(home.path() + u"/documents/oak.md"_s, "# Oak\n\nWood for <shelves> & tables.\n"));
    QProcess gateway;
    const QString address = startGateway(gateway, home.path() + u"/documents"_s);
    ASSERT_EQ(quarry({u"services"_s, u"--at"_s, address}).status, 0);
    ASSERT_EQ(quarry({u"add"_s, u"starter"_s}).status, 0);
    ASSERT_EQ(quarry({u"add"_s, u"shelves tables"_s}).status, 0);
    scheduleDueRefresh();
    const DesktopProgram bar = trayOf(u"0x202020"_s);
    const DesktopProgram server = notificationServer();
    ASSERT_TRUE(waitFor([&] { return notificationsShown() == 0; }));

    const Program agent = startAgent();
    ASSERT_TRUE(waitFor([&] { return notificationsShown() == 1; }));
    EXPECT_EQ(quarry({u"results"_s, u"--new"_s, u"--json"_s}).json()[u"results"].toArray().size(), 3);
    QRect icon;
    ASSERT_TRUE(waitFor([&] { return !(icon = openEye()).isNull(); }));
    screenshot(u"desktop-blink-open"_s);
    ASSERT_TRUE(waitFor([] { return openEye().isNull(); })) << "it blinks";
    screenshot(u"desktop-blink-closed"_s);

    clickScreen(icon.center() + QPoint(0, 9)); // at its lower edge: the menu does not cover it
    ASSERT_TRUE(waitFor(menuShowsNews));
    ASSERT_TRUE(waitFor([] { return !openEye().isNull(); })) << "it blinks on";
    screenshot(u"desktop-menu"_s);
    QProcess::execute(u"xdotool"_s, {u"key"_s, u"Escape"_s});
    ASSERT_TRUE(waitFor([] { return !menuShowsNews(); }));

    clickScreen(NotificationPlace);
    ASSERT_TRUE(waitFor([&] { return opened.size() == 1; }));
    ASSERT_TRUE(waitFor([&] { return notificationsShown() == 0; }));
    QElapsedTimer steady;
    steady.start();
    ASSERT_TRUE(waitFor([&] {
        if (!openEye().isNull())
            steady.restart();
        return steady.elapsed() > 2500;
    })) << "while the main application is open, it does not blink";
    everybody.post(MainApplicationStandIn::leaveNotification());
    EXPECT_TRUE(waitFor([] { return !openEye().isNull(); }));
    EXPECT_TRUE(waitFor([&] { return notificationsShown() == 1; })) << "what is still unread is told again";
    agent->terminate();
    EXPECT_EQ(statusOf(agent), 0);
    EXPECT_TRUE(waitFor([&] { return notificationsShown() == 0; })) << "nobody would hear a click on it";
}

TEST_F(AgentAndServices, EndsWithItsBundleAndTakesTheUpdaterAlong)
{
    ASSERT_NO_FATAL_FAILURE(holdServices());
    scheduleDueRefresh();
    const Program agent = startAgent();
    services.waitUntilHeld();
    ASSERT_EQ(processesNamed(u"QuarrySpotterUpdater"_s).size(), 1);

    QElapsedTimer elapsed;
    elapsed.start();
    bundle.remove();
    EXPECT_EQ(statusOf(agent), 0);
    EXPECT_TRUE(waitFor([] { return processesNamed(u"QuarrySpotterUpdater"_s).isEmpty(); }))
        << "its request is never answered";
    RecordProperty("milliseconds", static_cast<int>(elapsed.elapsed()));
}

TEST_F(AgentOnDesktop, OneStaysUntilEverybodyIsToldToQuit)
{
    scheduleNothingDue();
    const DesktopProgram bar = trayOf(u"0x202020"_s);
    const Program first = startAgent();
    const Program second = startAgent();
    ASSERT_TRUE(waitFor([&] { return !lives(first) || !lives(second); }));
    ASSERT_TRUE(waitFor(trayShowsIcon));
    ASSERT_NE(lives(first), lives(second));
    const Program& stays = lives(first) ? first : second;
    EXPECT_EQ(agentProcess(), stays->processId());

    // One that is started for a file hands that over, and leaves as well.
    const QString exported = home.path() + u"/my searches.qsexport"_s;
    ASSERT_TRUE(writeFile(exported, "[]"));
    const Program third = startAgent({exported});
    EXPECT_EQ(statusOf(third), 0);
    EXPECT_TRUE(third->readAll().contains("another agent runs already"));
    ASSERT_TRUE(waitFor([&] { return opened.size() == 1; }));
    EXPECT_EQ(opened.first(), exported);
    everybody.post(MainApplicationStandIn::leaveNotification());

    EXPECT_TRUE(lives(stays));
    everybody.post(u"QUIT_EVERYBODY_NOTIFICATION QS1"_s);
    EXPECT_EQ(statusOf(stays), 0);
    EXPECT_EQ(agentProcess(), 0);
}

TEST_F(AgentAndServices, GoesOnWhenItsBundleIsReplaced)
{
    ASSERT_NO_FATAL_FAILURE(holdServices());
    scheduleNothingDue();
    const DesktopProgram bar = trayOf(u"0x202020"_s);
    const Program agent = startAgent();
    ASSERT_TRUE(waitFor(trayShowsIcon));

    bundle.replace();
    const Program another = startAgent();
    EXPECT_EQ(statusOf(another), 0) << "the running one is still seen";
    EXPECT_EQ(agentProcess(), agent->processId());

    // A refresh from the menu is the new bundle's.
    clickScreen(trayIcon().center());
    for (const QString& key : {u"Down"_s, u"Down"_s, u"Return"_s})
        QProcess::execute(u"xdotool"_s, {u"key"_s, key});
    services.waitUntilHeld();
    const QList<qint64> updaters = processesNamed(u"QuarrySpotterUpdater"_s);
    ASSERT_EQ(updaters.size(), 1);
    EXPECT_EQ(QFile::symLinkTarget(u"/proc/%1/exe"_s.arg(updaters.first())), bundle.updaterProgram());

    // An updater that dies is no reason for the agent to go.
    ::kill(static_cast<pid_t>(updaters.first()), SIGKILL);
    ASSERT_TRUE(waitFor([] { return processesNamed(u"QuarrySpotterUpdater"_s).isEmpty(); }));
    EXPECT_EQ(quarry({u"agent"_s, u"stop"_s}).status, 0);
    EXPECT_EQ(statusOf(agent), 0);
}

TEST_F(AgentAndServices, KeepsTheScheduleWithoutABusOrATray)
{
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
    ASSERT_NO_FATAL_FAILURE(holdServices());
    scheduleDueRefresh();
    const Ran started = quarry({u"agent"_s, u"start"_s});
    EXPECT_EQ(started.status, 0) << started.err.toStdString();
    services.waitUntilHeld();
    EXPECT_NE(agentProcess(), 0);
    const Ran stopped = quarry({u"agent"_s, u"stop"_s});
    EXPECT_EQ(stopped.status, 0) << stopped.err.toStdString();
    EXPECT_EQ(processesNamed(u"QuarrySpotterAgent"_s), QList<qint64>());
    EXPECT_EQ(processesNamed(u"QuarrySpotterUpdater"_s).size(), 1) << "a refresh that runs is not the agent's to end";
    services.release();
    EXPECT_TRUE(waitFor([] { return processesNamed(u"QuarrySpotterUpdater"_s).isEmpty(); }));
}

} // namespace
} // namespace quarry::test
