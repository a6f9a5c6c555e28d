// The agent as people start and end it: real processes, without a screen, over a home folder of the test's own.

#include "support/QuarryProcess.h"
#include "support/TemporaryHome.h"

#include <QDir>
#include <QFileInfo>

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace quarry::test {
namespace {

/// The programs find the home folder, and no desktop, in their environment. Each case is a process of its own.
class AgentCommands : public ::testing::Test {
public:
    ~AgentCommands() override { (void)run({u"agent"_s, u"stop"_s}); }

protected:
    AgentCommands()
    {
        for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "XDG_CONFIG_HOME"})
            qunsetenv(variable);
        qputenv("HOME", home.path().toUtf8());
    }

    static Ran run(const QStringList& arguments) { return runQuarry(QString(), arguments); }
    static QJsonObject status() { return run({u"agent"_s, u"status"_s, u"--json"_s}).json(); }
    /// The agent's process; 0 when it does not run.
    static int process() { return status()[u"process"_s].toInt(); }

    TemporaryHome home;
    const QString loginItem = home.path() + u"/.config/autostart/com.zep.QuarrySpotterAgent.desktop"_s;
};

TEST_F(AgentCommands, WithoutADesktopTheAgentIsLeftToTheNextLogin)
{
    const Ran off = run({u"agent"_s, u"start"_s});
    EXPECT_EQ(off.status, 1);
    EXPECT_TRUE(off.err.contains(u"automatic refresh is off"_s)) << off.err.toStdString();

    const Ran on = run({u"schedule"_s, u"on"_s});
    EXPECT_EQ(on.status, 0);
    EXPECT_TRUE(on.err.contains(u"neither DISPLAY nor WAYLAND_DISPLAY"_s)) << on.err.toStdString();
    EXPECT_TRUE(QFile::exists(loginItem));
    EXPECT_TRUE(status()[u"loginItem"_s].toBool());
    EXPECT_EQ(run({u"agent"_s, u"start"_s}).status, 1);
    EXPECT_EQ(run({u"agent"_s, u"stop"_s}).status, 0);

    EXPECT_EQ(run({u"schedule"_s, u"off"_s}).status, 0);
    EXPECT_FALSE(QFile::exists(loginItem));
}

TEST_F(AgentCommands, AnotherHomeFolderIsNoReasonForALoginItem)
{
    const TemporaryHome other;
    const Ran on = runQuarry(other.path(), {u"schedule"_s, u"on"_s});
    EXPECT_EQ(on.status, 0);
    EXPECT_TRUE(on.err.contains(u"not your own home folder"_s)) << on.err.toStdString();
    EXPECT_FALSE(QFile::exists(loginItem));
}

TEST_F(AgentCommands, TheScheduleStartsRestartsAndEndsIt)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const Ran on = run({u"schedule"_s, u"on"_s, u"every"_s, u"60"_s});
    ASSERT_EQ(on.status, 0) << on.err.toStdString();
    const int first = process();
    ASSERT_NE(first, 0);
    EXPECT_TRUE(QFileInfo(u"/proc/%1/exe"_s.arg(first)).symLinkTarget().endsWith(u"/QuarrySpotterAgent"_s));

    EXPECT_EQ(run({u"schedule"_s, u"on"_s}).status, 0);
    EXPECT_EQ(process(), first) << "nothing changed for it";
    EXPECT_EQ(run({u"schedule"_s, u"every"_s, u"45"_s}).status, 0);
    const int second = process();
    EXPECT_NE(second, 0);
    EXPECT_NE(second, first) << "it reads the file at start only";

    EXPECT_EQ(run({u"schedule"_s, u"off"_s}).status, 0);
    EXPECT_EQ(process(), 0);
    EXPECT_FALSE(QFile::exists(u"/proc/%1/exe"_s.arg(second)));
}

TEST(Relaunch, OpensTheBundleOnceTheProcessHasEnded)
{
    const TemporaryHome folder;
    const QString contents = folder.path() + u"/Tool.app/Contents"_s;
    const QString program = contents + u"/bin/Tool"_s;
    const QString opened = folder.path() + u"/opened"_s;
    ASSERT_TRUE(QDir().mkpath(contents + u"/bin"_s));
    ASSERT_TRUE(
        writeFile(contents + u"/Info.plist"_s,
                  "<plist version=\"1.0\"><dict><key>CFBundleExecutable</key><string>Tool</string></dict></plist>"));
    // A pipe, so that the test hears of it.
    ASSERT_EQ(QProcess::execute(u"mkfifo"_s, {opened}), 0);
    ASSERT_TRUE(writeFile(program, "#!/bin/sh\necho opened > '" + opened.toUtf8() + "'\n"));
    ASSERT_TRUE(QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner));

    const auto helper = QStringLiteral(QUARRY_BUNDLE_DIR "/Agents/QuarrySpotterAgent.app/Contents/bin/RelaunchApp");
    QProcess old;
    old.start(u"cat"_s, {});
    ASSERT_TRUE(old.waitForStarted());
    const QString process = QString::number(old.processId());
    QProcess relaunch;
    relaunch.start(helper, {folder.path() + u"/Tool.app"_s, process});
    EXPECT_FALSE(relaunch.waitForFinished(100)) << "while the process lives";
    old.closeWriteChannel();
    ASSERT_TRUE(old.waitForFinished());
    QProcess listener;
    listener.start(u"cat"_s, {opened});
    ASSERT_TRUE(listener.waitForFinished());
    EXPECT_EQ(listener.readAllStandardOutput(), "opened\n");
    ASSERT_TRUE(relaunch.waitForFinished());
    EXPECT_EQ(relaunch.exitCode(), 0);

    EXPECT_EQ(QProcess::execute(helper, {folder.path() + u"/No.app"_s, process}), 1);
    EXPECT_EQ(QProcess::execute(helper, {folder.path(), u"-1"_s}), 2);
}

} // namespace
} // namespace quarry::test
