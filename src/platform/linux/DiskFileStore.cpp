#include "platform/FileStore.h"
#include "platform/SystemLog.h"
#include "platform/linux/Descriptor.h"

#include <QFile>
#include <QUuid>

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <new>
#include <system_error>
#include <utility>

namespace quarry {

namespace {

/// Nothing of the product comes near this; a file beyond it is a mistake, not something to read into memory.
constexpr std::int64_t MaximumFileSize = std::int64_t(8) << 30;

QString reasonOf(int fault)
{
    return QString::fromStdString(std::generic_category().message(fault));
}

FileStamp stampOf(const struct stat& status)
{
    return {status.st_ino, status.st_size,
            std::int64_t(status.st_mtim.tv_sec) * 1000000000 + std::int64_t(status.st_mtim.tv_nsec)};
}

std::optional<FileStamp> stampOfOpenFile(int descriptor)
{
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 ? std::optional(stampOf(status)) : std::nullopt;
}

int openRetrying(const QByteArray& path, int flags, mode_t mode = 0)
{
    int descriptor = -1;
    do
        descriptor = ::open(path.constData(), flags | O_CLOEXEC | O_NOCTTY, mode);
    while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

/// Collects small pieces and writes large ones; remembers the first fault.
class BufferedSink final : public ByteSink {
public:
    explicit BufferedSink(int descriptor) : _descriptor(descriptor) { _buffer.reserve(Capacity); }

    [[nodiscard]] bool append(const char* data, std::size_t size) override
    {
        if (_fault != 0)
            return false;
        if (static_cast<std::size_t>(_buffer.size()) + size > Capacity && !flush())
            return false;
        if (size >= Capacity)
            return write(data, size);
        _buffer.append(data, static_cast<qsizetype>(size));
        return true;
    }

    [[nodiscard]] bool flush()
    {
        const bool written = write(_buffer.constData(), static_cast<std::size_t>(_buffer.size()));
        _buffer.resize(0);
        return written;
    }

    [[nodiscard]] int fault() const { return _fault; }

private:
    static constexpr std::size_t Capacity = std::size_t(256) << 10;

    bool write(const char* data, std::size_t size)
    {
        while (size > 0 && _fault == 0) {
            const ssize_t written = ::write(_descriptor, data, size);
            if (written < 0 && errno != EINTR)
                _fault = errno;
            if (written > 0) {
                data += written;
                size -= static_cast<std::size_t>(written);
                _unsynced += written;
            }
        }
        startWriting();
        return _fault == 0;
    }

    /// Sets the disk to work while the rest of a large file is being made; the sync at the end then waits less.
    void startWriting()
    {
        constexpr ssize_t Worthwhile = ssize_t(8) << 20;
        if (_unsynced < Worthwhile)
            return;
        // A hint: that the bytes are on the disk is the business of the sync at the end.
        ::sync_file_range(_descriptor, _synced, _unsynced, SYNC_FILE_RANGE_WRITE);
        _synced += _unsynced;
        _unsynced = 0;
    }

    int _descriptor;
    int _fault = 0;
    off_t _synced = 0;     ///< Bytes whose writing to the disk was started.
    ssize_t _unsynced = 0; ///< Bytes written since.
    QByteArray _buffer;
};

/// Writes one file by way of a temporary file beside it, which is gone again unless it took the file's place.
class Replacement final {
public:
    Replacement(const QString& path, const QString& temporaryPrefix, unsigned mode)
        : _path(QFile::encodeName(path)), _shownPath(path), _folder(_path.left(_path.lastIndexOf('/') + 1)),
          _temporary(_folder + QFile::encodeName(temporaryPrefix) +
                     QUuid::createUuid().toByteArray(QUuid::Id128).left(FileStore::TemporaryNameDigits)),
          _file(openRetrying(_temporary, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, mode_t(mode)))
    {
        // The mode is meant as it is, whatever the process's mask.
        if (!_file.isOpen() || ::fchmod(_file.get(), mode_t(mode)) != 0)
            fail(errno);
    }
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;
    ~Replacement()
    {
        if (_file.isOpen() || !_result.ok())
            ::unlink(_temporary.constData());
    }

    /// `mayReplace` false: a file that stands there already is left alone.
    FileStore::WriteResult run(const FileStore::Producer& producer, bool mayReplace)
    {
        if (_result.ok() && fill(producer) && finish() && takePlace(mayReplace))
            syncFolder();
        return _result;
    }

private:
    bool fail(int fault) { return fail(reasonOf(fault)); }
    bool fail(const QString& reason)
    {
        _result.error = QStringLiteral("cannot write %1: %2").arg(_shownPath, reason);
        return false;
    }

    bool fill(const FileStore::Producer& producer)
    {
        BufferedSink sink(_file.get());
        const bool produced = producer(sink);
        if (sink.fault() != 0)
            return fail(sink.fault());
        if (!produced)
            return fail(QStringLiteral("its content could not be made"));
        return sink.flush() || fail(sink.fault());
    }

    bool finish()
    {
        if (::fsync(_file.get()) != 0)
            return fail(errno);
        stepPastOldDate();
        const std::optional<FileStamp> stamp = stampOfOpenFile(_file.get());
        if (!stamp)
            return fail(errno);
        _result.stamp = *stamp;
        return _file.close() || fail(errno);
    }

    /// The kernel's file times advance in steps of some milliseconds. A file replaced several times within one step
    /// must still show a new date each time: the date is what tells the other programs to read it again. So it never
    /// goes back to an earlier version's either, unless the clock did.
    void stepPastOldDate()
    {
        constexpr std::int64_t LongestStep = 1000000000;
        struct stat old {};
        struct stat written {};
        if (::stat(_path.constData(), &old) != 0 || ::fstat(_file.get(), &written) != 0)
            return;
        const std::int64_t ahead = stampOf(old).modifiedNanoseconds - stampOf(written).modifiedNanoseconds;
        if (ahead < 0 || ahead > LongestStep)
            return;
        struct timespec times[2] = {written.st_atim, old.st_mtim};
        times[1].tv_nsec += 1000;
        if (times[1].tv_nsec >= 1000000000) {
            times[1].tv_nsec -= 1000000000;
            times[1].tv_sec += 1;
        }
        if (::futimens(_file.get(), times) != 0 || ::fsync(_file.get()) != 0)
            debugLog(QStringLiteral("%1: cannot set its date: %2").arg(_shownPath, reasonOf(errno)));
    }

    bool takePlace(bool mayReplace)
    {
        if (mayReplace)
            return ::rename(_temporary.constData(), _path.constData()) == 0 || fail(errno);
        if (::renameat2(AT_FDCWD, _temporary.constData(), AT_FDCWD, _path.constData(), RENAME_NOREPLACE) == 0)
            return true;
        // A file system that cannot do it that way may have hard links; some have only one of the two.
        if (errno != EEXIST && ::link(_temporary.constData(), _path.constData()) == 0) {
            ::unlink(_temporary.constData());
            return true;
        }
        _result.alreadyThere = errno == EEXIST;
        return fail(errno);
    }

    /// The new file stands; where its folder cannot be written through, only a crash of the whole machine within
    /// the next seconds could bring the old one back.
    void syncFolder()
    {
        Descriptor folder(openRetrying(_folder, O_RDONLY | O_DIRECTORY));
        if (!folder.isOpen() || ::fsync(folder.get()) != 0)
            debugLog(QStringLiteral("cannot sync the folder of %1: %2").arg(_shownPath, reasonOf(errno)));
    }

    QByteArray _path;
    QString _shownPath;
    QByteArray _folder;
    QByteArray _temporary;
    Descriptor _file;
    FileStore::WriteResult _result;
};

/// Reads as many bytes as the file had when it was opened. Returns the fault, 0 for none.
int readAll(int descriptor, std::int64_t size, QByteArray& bytes)
{
    bytes = QByteArray(static_cast<qsizetype>(size), Qt::Uninitialized);
    qsizetype filled = 0;
    while (filled < bytes.size()) {
        const ssize_t got = ::read(descriptor, bytes.data() + filled, static_cast<std::size_t>(bytes.size() - filled));
        if (got < 0 && errno != EINTR)
            return errno;
        if (got == 0)
            break;
        filled += std::max<ssize_t>(got, 0);
    }
    bytes.truncate(filled);
    return 0;
}

/// Makes the path of a symbolic link the one of the file that it leads to. Returns the fault, 0 for none.
int followLink(QString& path)
{
    struct stat status {};
    const QByteArray name = QFile::encodeName(path);
    if (::lstat(name.constData(), &status) != 0 || !S_ISLNK(status.st_mode))
        return 0;
    const std::unique_ptr<char, decltype(&std::free)> target(::realpath(name.constData(), nullptr), &std::free);
    if (!target)
        return errno;
    path = QFile::decodeName(target.get());
    return 0;
}

/// Why an opened file cannot be read into memory; empty when it can.
QString refusal(const struct stat& status)
{
    if (!S_ISREG(status.st_mode))
        return QStringLiteral("it is no regular file");
    if (status.st_size > MaximumFileSize)
        return QStringLiteral("it is too large");
    return {};
}

} // namespace

std::optional<FileStamp> DiskFileStore::stamp(const QString& path) const
{
    struct stat status {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return std::nullopt;
    return stampOf(status);
}

FileStore::ReadResult DiskFileStore::read(const QString& path) const
{
    const auto failed = [&path](const QString& reason) {
        return ReadResult{{}, {}, QStringLiteral("cannot read %1: %2").arg(path, reason)};
    };
    // Without O_NONBLOCK a pipe at that place would hold the program for ever.
    Descriptor file(openRetrying(QFile::encodeName(path), O_RDONLY | O_NONBLOCK));
    if (!file.isOpen())
        return errno == ENOENT ? ReadResult() : failed(reasonOf(errno));
    struct stat status {};
    if (::fstat(file.get(), &status) != 0)
        return failed(reasonOf(errno));
    if (const QString reason = refusal(status); !reason.isEmpty())
        return failed(reason);
    ReadResult result;
    result.stamp = stampOf(status);
    try {
        if (const int fault = readAll(file.get(), status.st_size, result.bytes); fault != 0)
            return failed(reasonOf(fault));
    } catch (const std::bad_alloc&) {
        return failed(QStringLiteral("not enough memory"));
    }
    return result;
}

FileStore::WriteResult DiskFileStore::replace(const QString& path, const QString& temporaryPrefix, unsigned mode,
                                              const Producer& producer)
{
    QString target = path;
    if (const int fault = followLink(target); fault != 0)
        return {QStringLiteral("cannot write %1: where the link leads: %2").arg(path, reasonOf(fault)), {}, false};
    return Replacement(target, temporaryPrefix, mode).run(producer, true);
}

FileStore::WriteResult DiskFileStore::create(const QString& path, const QString& temporaryPrefix, unsigned mode,
                                             const QByteArray& bytes)
{
    const auto produce = [&bytes](ByteSink& sink) {
        return sink.append(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    };
    return Replacement(path, temporaryPrefix, mode).run(produce, false);
}

} // namespace quarry
