#include "platform/DetachedProgram.h"

#include "platform/linux/Descriptor.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <vector>

namespace quarry {

namespace {

/// Everything the new process needs, made before the fork: behind it, in a copy of a program with threads, memory can
/// no longer be asked for.
struct Launch {
    std::vector<QByteArray> texts;
    std::vector<char*> arguments;
    QByteArray folder;
    bool keepsErrors = false; ///< Standard error goes to a log, not to somebody who waits for its end.
    int report = -1;          ///< Gets one byte when the program could not be started.
};

bool errorsGoToLog()
{
    struct stat status {};
    return ::fstat(STDERR_FILENO, &status) == 0 && (S_ISREG(status.st_mode) || S_ISSOCK(status.st_mode));
}

Launch launchOf(const QString& program, const QStringList& arguments)
{
    Launch launch;
    launch.texts.push_back(QFile::encodeName(program));
    for (const QString& argument : arguments)
        launch.texts.push_back(QFile::encodeName(argument));
    for (QByteArray& text : launch.texts)
        launch.arguments.push_back(text.data());
    launch.arguments.push_back(nullptr);
    launch.folder = QFile::encodeName(QDir::homePath());
    launch.keepsErrors = errorsGoToLog();
    return launch;
}

void resetSignals()
{
    struct sigaction normal = {};
    normal.sa_handler = SIG_DFL;
    for (int signal = 1; signal < NSIG; ++signal)
        ::sigaction(signal, &normal, nullptr);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

[[noreturn]] void becomeProgram(const Launch& launch)
{
    resetSignals();
    const int nowhere = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    ::dup2(nowhere, STDIN_FILENO);
    ::dup2(nowhere, STDOUT_FILENO);
    if (!launch.keepsErrors)
        ::dup2(nowhere, STDERR_FILENO);
    if (::chdir(launch.folder.constData()) != 0 && ::chdir("/") != 0)
        ::_exit(1);
    ::execv(launch.arguments.front(), launch.arguments.data());
    const char failed = 1;
    while (::write(launch.report, &failed, 1) < 0 && errno == EINTR)
        ;
    ::_exit(1);
}

/// A process in between ends at once, so that the program belongs to nobody who would have to wait for it.
[[noreturn]] void handOn(const Launch& launch)
{
    ::setsid();
    const pid_t child = ::fork();
    if (child == 0)
        becomeProgram(launch);
    ::_exit(child > 0 ? 0 : 1);
}

/// Waits for the program to run or to fail, which closes the pipe either way.
bool hasStarted(pid_t between, int report)
{
    int status = 1;
    while (::waitpid(between, &status, 0) < 0 && errno == EINTR)
        ;
    char failed = 0;
    ssize_t count = 0;
    do
        count = ::read(report, &failed, 1);
    while (count < 0 && errno == EINTR);
    return count == 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

QString fileOf(const QString& program)
{
    return program.contains(u'/') ? QFileInfo(program).absoluteFilePath() : QStandardPaths::findExecutable(program);
}

} // namespace

bool launchDetached(const QString& program, const QStringList& arguments)
{
    const QString file = fileOf(program);
    if (file.isEmpty())
        return false;
    Launch launch = launchOf(file, arguments);
    std::array<int, 2> ends = {-1, -1};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return false;
    const Descriptor input(ends[0]);
    Descriptor report(ends[1]);
    launch.report = report.get();
    const pid_t between = ::fork();
    if (between == 0)
        handOn(launch);
    report.close();
    return between > 0 && hasStarted(between, input.get());
}

} // namespace quarry
