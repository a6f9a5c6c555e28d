#include "platform/SealedFile.h"

#include "platform/linux/Descriptor.h"

#include <QFile>

#include <fcntl.h>
#include <sys/mman.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace quarry {

namespace {

bool writeAll(int descriptor, const QByteArray& bytes)
{
    for (qsizetype written = 0; written < bytes.size();) {
        const ssize_t count =
            ::write(descriptor, bytes.constData() + written, static_cast<std::size_t>(bytes.size() - written));
        if (count < 0 && errno != EINTR)
            return false;
        written += std::max<ssize_t>(count, 0);
    }
    return true;
}

/// How many bytes were copied; none with a reason.
std::optional<qint64> copy(QFile& file, int descriptor, std::int64_t limit, QString& error)
{
    constexpr qint64 step = 1 << 20;
    qint64 copied = 0;
    while (!file.atEnd()) {
        const QByteArray piece = file.read(step);
        copied += piece.size();
        if (piece.isEmpty() || file.error() != QFile::NoError)
            error = file.errorString();
        else if (copied > limit)
            error = QStringLiteral("it is too large");
        else if (!writeAll(descriptor, piece))
            error = QString::fromLocal8Bit(std::strerror(errno));
        else
            continue;
        return std::nullopt;
    }
    return copied;
}

} // namespace

std::optional<SealedFile> SealedFile::copyOf(const QString& path, std::int64_t limit, QString* error)
{
    QString reason;
    QFile file(path);
    Descriptor memory(::memfd_create("sealed", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    std::optional<qint64> size;
    if (!file.open(QIODevice::ReadOnly))
        reason = file.errorString();
    else if (!memory.isOpen())
        reason = QString::fromLocal8Bit(std::strerror(errno));
    else
        size = copy(file, memory.get(), limit, reason);
    SealedFile sealed;
    if (size && ::fcntl(memory.get(), F_ADD_SEALS, F_SEAL_WRITE | F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL) == 0) {
        sealed._size = *size;
        void* bytes = *size == 0
                          ? nullptr
                          : ::mmap(nullptr, static_cast<std::size_t>(*size), PROT_READ, MAP_PRIVATE, memory.get(), 0);
        if (bytes != MAP_FAILED) {
            sealed._bytes = static_cast<const char*>(bytes);
            sealed._descriptor = memory.release();
            return sealed;
        }
    }
    if (error)
        *error = QStringLiteral("%1 cannot be read: %2")
                     .arg(path, reason.isEmpty() ? QString::fromLocal8Bit(std::strerror(errno)) : reason);
    return std::nullopt;
}

SealedFile::SealedFile(SealedFile&& other) noexcept
    : _descriptor(std::exchange(other._descriptor, -1)), _bytes(std::exchange(other._bytes, nullptr)),
      _size(std::exchange(other._size, 0))
{
}

SealedFile& SealedFile::operator=(SealedFile&& other) noexcept
{
    std::swap(_descriptor, other._descriptor);
    std::swap(_bytes, other._bytes);
    std::swap(_size, other._size);
    return *this;
}

SealedFile::~SealedFile()
{
    if (_bytes)
        ::munmap(const_cast<char*>(_bytes), static_cast<std::size_t>(_size));
    if (_descriptor >= 0)
        ::close(_descriptor);
}

} // namespace quarry
