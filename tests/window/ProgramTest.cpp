// The program as people and desktops start and end it: real processes on the test's screen and session bus.

#include "platform/desktop/DBusNotifications.h"
#include "platform/desktop/SessionBus.h"
#include "support/QuarryProcess.h"
#include "support/Screen.h"
#include "support/TemporaryHome.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace quarry::test {
namespace {

class ProgramTest : public testing::Test {
protected:
    ProgramTest()
    {
        notifications.addObserver(u"kAppWillQuitNotification"_s,
                                  [this](const DistributedNotifications::UserInfo&) { ++goodbyes; });
    }
    ~ProgramTest() override
    {
        program.kill();
        program.waitForFinished();
    }
    void start(QProcess& process, const QStringList& files = {})
    {
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(QStringLiteral(QUARRY_BUNDLE_DIR "/bin/QuarrySpotter"),
                      QStringList{u"--home"_s, home.path()} + files);
    }
    [[nodiscard]] static bool ends(QProcess& process)
    {
        return happens([&process] { return process.state() == QProcess::NotRunning; });
    }
    /// The top-level windows of the program that are on the screen.
    static int windows()
    {
        QProcess search;
        search.start(u"xdotool"_s, {u"search"_s, u"--onlyvisible"_s, u"--name"_s, u"^QuarrySpotter"_s});
        search.waitForFinished();
        return int(search.readAllStandardOutput().count('\n'));
    }

    TemporaryHome home;
    SessionBus bus;
    DBusNotifications notifications{bus};
    int goodbyes = 0;
    QProcess program;
};

TEST_F(ProgramTest, ASecondStartHandsItsFilesToTheFirstWhichSavesWhenItIsTerminated)
{
    const TemporaryHome other;
    ASSERT_EQ(runQuarry(other.path(), {u"add"_s, u"from elsewhere"_s}).status, 0);
    const QString file = home.path() + u"/a b.qsexport"_s;
    ASSERT_EQ(runQuarry(other.path(), {u"export"_s, u"-o"_s, file}).status, 0);

    start(program);
    ASSERT_TRUE(happens([] { return windows() > 0; }));
    const int before = windows();
    QProcess second;
    start(second, {file});
    ASSERT_TRUE(ends(second));
    EXPECT_EQ(second.exitCode(), 0);
    EXPECT_EQ(windows(), before);
    EXPECT_EQ(program.state(), QProcess::Running);

    // At once: what came in is not in the file yet, unless the program saves at its end.
    program.terminate();
    ASSERT_TRUE(ends(program));
    EXPECT_EQ(program.exitCode(), 0);
    EXPECT_TRUE(happens([this] { return goodbyes == 1; }));
    EXPECT_TRUE(runQuarry(home.path(), {u"list"_s}).out.contains(u"from elsewhere"_s));
}

TEST_F(ProgramTest, EndsWhenAnInstallerAsksEverybodyTo)
{
    start(program);
    ASSERT_TRUE(happens([] { return windows() > 0; }));
    notifications.post(u"QUIT_EVERYBODY_NOTIFICATION QS1"_s);
    ASSERT_TRUE(ends(program));
    EXPECT_EQ(program.exitCode(), 0);
    EXPECT_TRUE(happens([this] { return goodbyes == 1; }));
}

} // namespace
} // namespace quarry::test
