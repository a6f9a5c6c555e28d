#include "platform/ContainedFolder.h"

#include "platform/linux/Descriptor.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QList>
#include <QString>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace quarry {

namespace {

struct DirectoryCloser {
    void operator()(DIR* directory) const { ::closedir(directory); }
};

FileStamp stampOf(const struct stat& status)
{
    return {status.st_ino, status.st_size,
            std::int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec};
}

/// Opens one component after the other, following no link: what a name stands for may change between two looks,
/// but an open folder stays where it is.
Descriptor openBelow(int root, const QByteArray& path, int flags)
{
    constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    if (path.isEmpty())
        return Descriptor(::openat(root, ".", folderFlags));
    if (!ContainedFolder::isPlainPath(path))
        return Descriptor(-1);
    Descriptor folder(-1);
    qsizetype begin = 0;
    for (;;) {
        const qsizetype slash = path.indexOf('/', begin);
        const QByteArray name = path.mid(begin, slash < 0 ? -1 : slash - begin);
        const int base = folder.isOpen() ? folder.get() : root;
        if (slash < 0)
            return Descriptor(::openat(base, name.constData(), flags | O_NOFOLLOW | O_CLOEXEC));
        folder = Descriptor(::openat(base, name.constData(), folderFlags));
        if (!folder.isOpen())
            return folder;
        begin = slash + 1;
    }
}

} // namespace

std::optional<ContainedFolder> ContainedFolder::open(const QString& path, QString* error)
{
    Descriptor descriptor(::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // Being allowed to enter a folder is not being allowed to list it.
    if (!descriptor.isOpen()) {
        *error =
            QStringLiteral("cannot read the folder \"%1\": %2").arg(path, QString::fromLocal8Bit(std::strerror(errno)));
        return std::nullopt;
    }
    return ContainedFolder(descriptor.release(), QDir(path).canonicalPath());
}

ContainedFolder::ContainedFolder(ContainedFolder&& other) noexcept
    : _descriptor(std::exchange(other._descriptor, -1)), _path(std::move(other._path))
{
}

ContainedFolder& ContainedFolder::operator=(ContainedFolder&& other) noexcept
{
    std::swap(_descriptor, other._descriptor);
    std::swap(_path, other._path);
    return *this;
}

ContainedFolder::~ContainedFolder()
{
    if (_descriptor >= 0)
        ::close(_descriptor);
}

std::optional<std::vector<ContainedFolder::Entry>> ContainedFolder::list(const QByteArray& folder) const
{
    Descriptor descriptor = openBelow(_descriptor, folder, O_RDONLY | O_DIRECTORY);
    if (!descriptor.isOpen())
        return std::nullopt;
    const std::unique_ptr<DIR, DirectoryCloser> directory(::fdopendir(descriptor.get()));
    if (!directory)
        return std::nullopt;
    const int opened = descriptor.release();
    std::vector<Entry> entries;
    while (const dirent* item = ::readdir(directory.get())) {
        const QByteArray name(item->d_name);
        struct stat status = {};
        if (name == "." || name == ".." || ::fstatat(opened, item->d_name, &status, AT_SYMLINK_NOFOLLOW) != 0)
            continue;
        if (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode))
            entries.push_back({name, S_ISDIR(status.st_mode), stampOf(status)});
    }
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) { return a.name < b.name; });
    return entries;
}

std::optional<ContainedFolder::Content> ContainedFolder::read(const QByteArray& file, std::int64_t limit) const
{
    if (file.isEmpty())
        return std::nullopt;
    // Opening a pipe would wait for a writer without O_NONBLOCK.
    const Descriptor descriptor = openBelow(_descriptor, file, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    struct stat status = {};
    if (!descriptor.isOpen() || ::fstat(descriptor.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    Content content;
    content.stamp = stampOf(status);
    const std::int64_t wanted = std::min<std::int64_t>(limit, status.st_size);
    content.cut = status.st_size > limit;
    content.bytes.resize(wanted);
    std::int64_t done = 0;
    while (done < wanted) {
        const ssize_t count =
            ::read(descriptor.get(), content.bytes.data() + done, static_cast<std::size_t>(wanted - done));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return std::nullopt;
        if (count == 0)
            break;
        done += count;
    }
    content.bytes.truncate(done);
    return content;
}

bool ContainedFolder::isPlainPath(const QByteArray& path)
{
    if (path.contains('\0'))
        return false;
    const QList<QByteArray> names = path.split('/');
    return std::none_of(names.begin(), names.end(),
                        [](const QByteArray& name) { return name.isEmpty() || name == "." || name == ".."; });
}

} // namespace quarry
