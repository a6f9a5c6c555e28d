#include "platform/ToolProgram.h"

#include "platform/SystemLog.h"

#include <QFile>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <vector>

namespace quarry {

namespace {

constexpr int passedDescriptor = 3;

/// What the child does before it becomes the program.
class SpawnSetup final {
public:
    explicit SpawnSetup(const SealedFile* image)
    {
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        if (image)
            posix_spawn_file_actions_adddup2(&actions, image->descriptor(), passedDescriptor);
        // A program that holds back the signals that end it would hand that on.
        sigset_t none;
        sigemptyset(&none);
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setsigmask(&attributes, &none);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    }
    ~SpawnSetup()
    {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }
    SpawnSetup(const SpawnSetup&) = delete;
    SpawnSetup& operator=(const SpawnSetup&) = delete;

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
};

int endOf(pid_t child)
{
    int status = 0;
    while (::waitpid(child, &status, 0) < 0) {
        if (errno != EINTR)
            return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

ToolProgram::ToolProgram(const QString& path)
    : _name(QFile::encodeName(path)), _descriptor(::open(_name.constData(), O_RDONLY | O_CLOEXEC))
{
}

ToolProgram::~ToolProgram()
{
    if (_descriptor >= 0)
        ::close(_descriptor);
}

int ToolProgram::run(const QStringList& arguments, const SealedFile* image) const
{
    QList<QByteArray> texts = {_name};
    for (const QString& argument : arguments)
        texts.append(QFile::encodeName(argument));
    std::vector<char*> pointers;
    for (QByteArray& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);

    // The descriptor may be 3 itself, which the image takes in the child: the parent's own table is asked instead.
    const QByteArray file = "/proc/" + QByteArray::number(::getpid()) + "/fd/" + QByteArray::number(_descriptor);
    const SpawnSetup setup(image);
    pid_t child = 0;
    const int fault =
        ::posix_spawn(&child, file.constData(), &setup.actions, &setup.attributes, pointers.data(), environ);
    if (fault == 0)
        return endOf(child);
    systemLog(QStringLiteral("%1 does not start: %2")
                  .arg(QFile::decodeName(_name), QString::fromLocal8Bit(std::strerror(fault))));
    return -1;
}

} // namespace quarry
