#include "platform/DetachedProgram.h"

#include "support/TemporaryHome.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

using namespace quarry;

namespace {

/// What a program writes into a named pipe: reading it waits until the program has ended.
QByteArray saidInto(const QString& pipe)
{
    return test::contentOf(pipe);
}

TEST(DetachedProgram, LeavesNothingToWaitForAndKeepsNothingOpen)
{
    QTemporaryDir folder;
    const QString pipe = folder.filePath(QStringLiteral("pipe"));
    ASSERT_EQ(::mkfifo(pipe.toUtf8().constData(), 0600), 0);
    sigset_t held;
    sigset_t before;
    sigemptyset(&held);
    sigaddset(&held, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &held, &before);
    const QString script = QStringLiteral(
        "exec 3>\"$1\"; echo \"$2\" >&3; seen=$(readlink /proc/$$/fd/0 /proc/$$/fd/1); echo \"$seen\" >&3; "
        "exec grep SigBlk /proc/self/status >&3");
    ASSERT_TRUE(launchDetached(QStringLiteral("sh"), {QStringLiteral("-c"), script, QStringLiteral("sh"), pipe,
                                                      QStringLiteral("a  \"b\" $c")}));
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    EXPECT_EQ(saidInto(pipe).toStdString(), "a  \"b\" $c\n/dev/null\n/dev/null\nSigBlk:\t0000000000000000\n");
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "it left a process to wait for";
    EXPECT_EQ(errno, ECHILD);
}

TEST(DetachedProgram, SaysWhenItCannotBeStarted)
{
    for (const char* program : {"", "/no/such/program", "no-such-program-anywhere", "/etc/passwd", "/tmp"})
        EXPECT_FALSE(launchDetached(QLatin1String(program), {})) << program;
}

} // namespace
