#include "platform/FileLock.h"

#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <thread>
#include <utility>

namespace quarry {

namespace {

/// Between two tries. Short, so that one who waits gets his turn beside one who takes the lock again and again.
constexpr std::chrono::milliseconds LongestWait(4);

/// An open descriptor that holds the lock; -1 when somebody else holds it or, with `fault` set, when it cannot
/// be taken at all.
int tryLock(const QByteArray& path, int& fault)
{
    fault = 0;
    for (;;) {
        const int descriptor = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOCTTY, 0660);
        if (descriptor < 0) {
            if (errno == EINTR)
                continue;
            fault = errno;
            return -1;
        }
        int result = 0;
        do
            result = ::flock(descriptor, LOCK_EX | LOCK_NB);
        while (result != 0 && errno == EINTR);
        if (result != 0) {
            fault = errno == EWOULDBLOCK ? 0 : errno;
            ::close(descriptor);
            return -1;
        }
        // Somebody may have removed or replaced the file between the opening and the locking: a lock on a file
        // that no longer stands there keeps nobody out.
        struct stat locked {};
        struct stat there {};
        if (::fstat(descriptor, &locked) == 0 && ::stat(path.constData(), &there) == 0 &&
            locked.st_ino == there.st_ino && locked.st_dev == there.st_dev)
            return descriptor;
        ::close(descriptor);
    }
}

void report(QString* error, const QString& text)
{
    if (error)
        *error = text;
}

QString faultText(const QString& path, int fault)
{
    return QStringLiteral("cannot lock %1: %2")
        .arg(path, QString::fromStdString(std::generic_category().message(fault)));
}

} // namespace

FileLock::FileLock(FileLock&& other) noexcept : _descriptor(std::exchange(other._descriptor, -1)) {}

FileLock& FileLock::operator=(FileLock&& other) noexcept
{
    if (this != &other) {
        if (_descriptor >= 0)
            ::close(_descriptor);
        _descriptor = std::exchange(other._descriptor, -1);
    }
    return *this;
}

FileLock::~FileLock()
{
    if (_descriptor >= 0)
        ::close(_descriptor);
}

std::optional<FileLock> FileLock::tryAcquire(const QString& path, QString* fault)
{
    int code = 0;
    const int descriptor = tryLock(QFile::encodeName(path), code);
    if (code != 0)
        report(fault, faultText(path, code));
    if (descriptor < 0)
        return std::nullopt;
    return FileLock(descriptor);
}

std::optional<FileLock> FileLock::acquire(const QString& path, std::chrono::milliseconds timeout, QString* error)
{
    using Clock = std::chrono::steady_clock;
    const QByteArray name = QFile::encodeName(path);
    const Clock::time_point deadline = Clock::now() + timeout;
    for (std::chrono::milliseconds wait(1);; wait = std::min(wait * 2, LongestWait)) {
        int fault = 0;
        const int descriptor = tryLock(name, fault);
        if (descriptor >= 0)
            return FileLock(descriptor);
        if (fault != 0) {
            report(error, faultText(path, fault));
            return std::nullopt;
        }
        if (Clock::now() >= deadline) {
            report(error, QStringLiteral("another program holds the lock %1").arg(path));
            return std::nullopt;
        }
        std::this_thread::sleep_for(wait);
    }
}

} // namespace quarry
