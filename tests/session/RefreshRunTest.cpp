#include "session/RefreshRun.h"

#include "support/TemporaryHome.h"

#include <QCoreApplication>
#include <QEventLoop>

#include <gtest/gtest.h>

using namespace quarry;
using namespace quarry::test;

namespace {

/// A program in the updater's place, and an event loop that runs until the refresh is where the test wants it.
class RefreshRunTest : public testing::Test {
protected:
    QString program(const QByteArray& script)
    {
        const QString path = home.path() + QStringLiteral("/updater");
        EXPECT_TRUE(writeFile(path, "#!/bin/sh\n" + script));
        EXPECT_TRUE(QFile::setPermissions(path, QFile::ReadOwner | QFile::ExeOwner));
        return path;
    }
    void runUntil(const std::function<bool()>& wanted)
    {
        while (!wanted())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    char name[8] = "session";
    char* arguments[1] = {name};
    int argumentCount = 1;
    QCoreApplication application{argumentCount, arguments};
    TemporaryHome home;
};

TEST_F(RefreshRunTest, FollowsTheProgressToItsEnd)
{
    RefreshRun run(program(R"(
echo '{"event":"refresh-started","protocol":1,"queries":2}'
echo '{"event":"query-started","query":"Q1","title":"bread"}'
echo '{"event":"service-asked","query":"Q1","title":"bread","service":"Bing"}'
echo '{"event":"service-answered","query":"Q1","service":"Bing","error":"refused"}'
echo 'no line of ours'
echo '{"event":"query-finished","query":"Q1","title":"bread","outcome":"updated","added":3,"error":""}'
echo '{"event":"query-started","query":"Q2","title":"pond"}'
echo '{"event":"query-finished","query":"Q2","title":"pond","outcome":"failed","error":"bad expression"}'
echo "{\"event\":\"message\",\"text\":\"$*\"}"
echo '{"event":"refresh-finished","status":3,"updated":1,"failed":1,"added":3,"services":[{"service":"Bing","verdict":"blocked"},{"service":"Google","verdict":"results"},{"service":"Hermes","verdict":"none"},{"service":"Yahoo","verdict":"tired"}]}'
exit 3
)"),
                   home, [] {});
    run.start({QStringLiteral("Q1"), QStringLiteral("Q2")});
    EXPECT_TRUE(run.state().isRunning);
    runUntil([&] { return !run.state().isRunning; });
    const RefreshState& state = run.state();
    EXPECT_EQ(state.end, RefreshState::End::SomeNotUpdated);
    EXPECT_EQ(state.done, 2);
    EXPECT_EQ(state.progress(), 1.0);
    EXPECT_EQ(state.service, QStringLiteral("Bing"));
    EXPECT_EQ(state.added, 3);
    EXPECT_TRUE(state.updating.isEmpty());
    EXPECT_EQ(state.services, (QMap<SearchService, ServiceVerdict>{{SearchService::Google, ServiceVerdict::Results},
                                                                   {SearchService::Bing, ServiceVerdict::Blocked}}))
        << "services and verdicts of a newer updater are passed over";
    EXPECT_EQ(state.serviceErrors.value(QStringLiteral("Bing")), QStringLiteral("refused"));
    EXPECT_EQ(state.faults, (QStringList{QStringLiteral("pond: bad expression"),
                                         QStringLiteral("--home %1 --progress Q1 Q2").arg(home.path())}));
}

TEST_F(RefreshRunTest, StopsAndCanBeStartedAgain)
{
    RefreshRun run(program(R"(
trap 'exit 5' TERM
echo '{"event":"refresh-started","protocol":1,"queries":1}'
while :; do sleep 0.05; done
)"),
                   home, [] {});
    for (int round = 0; round < 2; ++round) {
        run.start();
        runUntil([&] { return run.state().queries == 1; });
        run.stop();
        EXPECT_TRUE(run.state().isStopping);
        runUntil([&] { return !run.state().isRunning; });
        EXPECT_EQ(run.state().end, RefreshState::End::Stopped);
    }
}

TEST_F(RefreshRunTest, SaysWhatIsWrongWithAProgramThatCannotRun)
{
    RefreshRun missing(home.path() + QStringLiteral("/nothing"), home, [] {});
    missing.start();
    runUntil([&] { return !missing.state().isRunning; });
    EXPECT_EQ(missing.state().end, RefreshState::End::Failed);
    EXPECT_EQ(missing.state().faults.size(), 1);
    RefreshRun killed(program("kill -9 $$\n"), home, [] {});
    killed.start();
    runUntil([&] { return !killed.state().isRunning; });
    EXPECT_EQ(killed.state().end, RefreshState::End::Failed);
    EXPECT_EQ(killed.state().faults.size(), 1);
}

} // namespace
