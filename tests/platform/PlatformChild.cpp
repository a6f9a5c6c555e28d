// A process for the tests to start: holds a lock until its input ends, or writes a file that grows past the
// limit it was given.

#include "platform/FileLock.h"
#include "platform/FileStore.h"

#include <QFile>

#include <sys/resource.h>

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

int main(int argc, char** argv)
{
    if (argc != 3)
        return 2;
    const QString path = QFile::decodeName(argv[2]);
    return argv[1][0] == 'l' ? holdLock(path) : writeBeyondLimit(path);
}
