// A process for the tests to start: holds a lock until its input ends, or writes a file that grows past the
// limit it was given, or tells how another user's process looks.

#include "platform/FileLock.h"
#include "platform/FileStore.h"
#include "platform/linux/LinuxProcessTable.h"

#include <QFile>

#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>

using namespace quarry;

static int holdLock(const QString& path)
{
    const auto lock = FileLock::tryAcquire(path);
    std::puts(lock ? "held" : "refused");
    std::fflush(stdout);
    std::getchar();
    return lock ? 0 : 1;
}

static int writeBeyondLimit(const QString& path)
{
    // As on a full disk, the write itself fails, after some of it went through.
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{1 << 20, 1 << 20};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    const auto written = DiskFileStore().replace(path, QStringLiteral(".dat"), 0660, QByteArray(3 << 20, 'x'));
    std::printf("%s\n", written.error.toUtf8().constData());
    return written.ok() ? 1 : 0;
}

static int tellOfProcess(std::int64_t processId)
{
    if (::setgid(65534) != 0 || ::setuid(65534) != 0)
        return 3;
    LinuxProcessTable table;
    const auto processes = table.processes();
    for (const ProcessRecord& process : processes.value_or(std::vector<ProcessRecord>())) {
        if (process.processId == processId)
            std::printf("%s %d", process.command.toUtf8().constData(), int(process.commandIsShortened));
    }
    return table.interrupt(processId) ? 4 : 0;
}

int main(int argc, char** argv)
{
    if (argc != 3)
        return 2;
    const QString path = QFile::decodeName(argv[2]);
    if (argv[1][0] == 'p')
        return tellOfProcess(path.toLongLong());
    return argv[1][0] == 'l' ? holdLock(path) : writeBeyondLimit(path);
}
