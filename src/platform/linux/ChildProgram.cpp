#include "platform/ChildProgram.h"

#include "platform/linux/Descriptor.h"

#include <QFile>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>
#include <vector>

namespace quarry {

namespace {

constexpr std::array PassedOn = {SIGINT, SIGTERM, SIGHUP};
constexpr qsizetype LongestLine = 1 << 20;

static_assert(std::atomic<pid_t>::is_always_lock_free, "the handler below may only touch lock-free atomics");
std::atomic<pid_t> runningChild = 0;
std::atomic<bool> wasInterrupted = false;

extern "C" void passOn(int)
{
    const int savedErrno = errno;
    wasInterrupted = true;
    const pid_t child = runningChild;
    if (child > 0)
        ::kill(child, SIGINT);
    errno = savedErrno;
}

/// Handlers that pass interrupts on, for as long as it lives.
class InterruptHandlers final {
public:
    InterruptHandlers()
    {
        struct sigaction action = {};
        action.sa_handler = passOn;
        sigemptyset(&action.sa_mask);
        for (std::size_t i = 0; i < PassedOn.size(); ++i)
            ::sigaction(PassedOn[i], &action, &_before[i]);
    }
    ~InterruptHandlers()
    {
        for (std::size_t i = 0; i < PassedOn.size(); ++i)
            ::sigaction(PassedOn[i], &_before[i], nullptr);
    }
    InterruptHandlers(const InterruptHandlers&) = delete;
    InterruptHandlers& operator=(const InterruptHandlers&) = delete;

private:
    std::array<struct sigaction, PassedOn.size()> _before = {};
};

QString systemError(int code)
{
    return QString::fromLocal8Bit(std::strerror(code));
}

/// Starts the program with its output going to that descriptor. Answers an error number, 0 on success.
int start(const QByteArray& program, const QStringList& arguments, int output, pid_t& child)
{
    QList<QByteArray> texts = {program};
    for (const QString& argument : arguments)
        texts.append(argument.toUtf8());
    std::vector<char*> pointers;
    for (QByteArray& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    // A process group of its own: an interrupt from the terminal comes to this process only and is passed on once.
    posix_spawnattr_t attributes;
    ::posix_spawnattr_init(&attributes);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    const int failure = ::posix_spawn(&child, program.constData(), &actions, &attributes, pointers.data(), environ);
    ::posix_spawnattr_destroy(&attributes);
    ::posix_spawn_file_actions_destroy(&actions);
    return failure;
}

/// Takes the complete lines off the front of the buffer.
void handOverLines(QByteArray& buffer, const std::function<void(const QByteArray&)>& onLine)
{
    qsizetype begin = 0;
    for (qsizetype end = buffer.indexOf('\n'); end >= 0; end = buffer.indexOf('\n', begin)) {
        onLine(buffer.mid(begin, end - begin));
        begin = end + 1;
    }
    buffer.remove(0, begin);
    if (buffer.size() >= LongestLine)
        onLine(std::exchange(buffer, QByteArray()));
}

/// Reads until the program closes its end.
void readLines(int input, const std::function<void(const QByteArray&)>& onLine)
{
    QByteArray buffer;
    std::array<char, 4096> piece = {};
    for (;;) {
        const ssize_t count = ::read(input, piece.data(), piece.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            break;
        buffer.append(piece.data(), count);
        handOverLines(buffer, onLine);
    }
    if (!buffer.isEmpty())
        onLine(buffer);
}

ChildEnd waitFor(pid_t child)
{
    int status = 0;
    while (::waitpid(child, &status, 0) < 0) {
        if (errno != EINTR)
            return {systemError(errno), -1, wasInterrupted};
    }
    if (WIFSIGNALED(status))
        return {QStringLiteral("it was ended by signal %1").arg(WTERMSIG(status)), -1, wasInterrupted};
    return {{}, WEXITSTATUS(status), wasInterrupted};
}

} // namespace

ChildEnd runProgram(const QString& program, const QStringList& arguments,
                    const std::function<void(const QByteArray& line)>& onLine)
{
    std::array<int, 2> ends = {-1, -1};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return {systemError(errno), -1, false};
    Descriptor input(ends[0]);
    Descriptor output(ends[1]);

    wasInterrupted = false;
    const InterruptHandlers handlers;
    pid_t child = 0;
    const int failure = start(QFile::encodeName(program), arguments, output.get(), child);
    if (failure != 0)
        return {systemError(failure), -1, wasInterrupted};
    runningChild = child;
    if (wasInterrupted)
        ::kill(child, SIGINT); // it came before the handler knew the child
    output.close();
    readLines(input.get(), onLine);
    ChildEnd end = waitFor(child);
    runningChild = 0;
    return end;
}

} // namespace quarry
