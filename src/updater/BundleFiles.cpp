#include "updater/BundleFiles.h"

#include "platform/FileSync.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QStorageInfo>
#include <QTemporaryDir>

#include <filesystem>
#include <system_error>

namespace quarry {

namespace {

namespace fs = std::filesystem;

fs::path pathOf(const QString& path)
{
    return QFile::encodeName(path).toStdString();
}

/// Read-only folders and files, as they lie in images, become the user's: the next update has to move them.
void makeWritable(const fs::path& path, std::error_code& code)
{
    fs::permissions(path, fs::perms::owner_write, fs::perm_options::add, code);
}

std::error_code copyTree(const fs::path& from, const fs::path& to)
{
    std::error_code code;
    const fs::file_type type = fs::symlink_status(from, code).type();
    if (code || type == fs::file_type::symlink) {
        if (!code)
            fs::copy_symlink(from, to, code);
        return code;
    }
    if (type == fs::file_type::regular) {
        if (fs::copy_file(from, to, code))
            makeWritable(to, code);
        return code;
    }
    if (type != fs::file_type::directory)
        return std::make_error_code(std::errc::operation_not_supported);
    // As its model, but for the permission to fill it.
    if (fs::create_directory(to, from, code))
        makeWritable(to, code);
    fs::directory_iterator entries(from, code);
    for (const fs::directory_iterator end; !code && entries != end; entries.increment(code)) {
        if (const std::error_code fault = copyTree(entries->path(), to / entries->path().filename()))
            return fault;
    }
    return code;
}

/// Where the desktop keeps what it knows of something in the Trash.
QString trashRecordOf(const QString& trashed)
{
    const QFileInfo info(trashed);
    return info.dir().filePath(QStringLiteral("../info/%1.trashinfo").arg(info.fileName()));
}

} // namespace

bool DiskBundleFiles::exists(const QString& path) const
{
    const QFileInfo info(path);
    return info.exists() || info.isSymLink();
}

std::int64_t DiskBundleFiles::size(const QString& folder) const
{
    std::int64_t bytes = 0;
    std::error_code code;
    fs::recursive_directory_iterator entries(pathOf(folder), code);
    for (const fs::recursive_directory_iterator end; !code && entries != end; entries.increment(code)) {
        std::error_code ignored;
        if (fs::is_regular_file(entries->symlink_status(ignored)))
            bytes += static_cast<std::int64_t>(entries->file_size(ignored));
    }
    return bytes;
}

std::int64_t DiskBundleFiles::freeSpace(const QString& folder) const
{
    return QStorageInfo(folder).bytesAvailable();
}

bool DiskBundleFiles::isWritable(const QString& folder) const
{
    return QFileInfo(folder).isWritable();
}

std::optional<QString> DiskBundleFiles::makeStagingFolder(const QString& parent)
{
    QTemporaryDir folder(parent + QStringLiteral("/.QuarrySpotter-update-XXXXXX"));
    folder.setAutoRemove(false);
    return folder.isValid() ? std::optional(folder.path()) : std::nullopt;
}

QString DiskBundleFiles::copy(const QString& from, const QString& to)
{
    const std::error_code fault = copyTree(pathOf(from), pathOf(to));
    if (fault)
        return QStringLiteral("%1 cannot be copied: %2").arg(from, QString::fromStdString(fault.message()));
    return syncFileSystem(to) ? QString() : QStringLiteral("%1 cannot be written to the disk").arg(to);
}

bool DiskBundleFiles::rename(const QString& from, const QString& to)
{
    return !exists(to) && QDir().rename(from, to);
}

std::optional<QString> DiskBundleFiles::moveToTrash(const QString& path)
{
    // Qt makes the Trash, but not the folder that it lies in.
    QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
    QString trashed;
    return QFile::moveToTrash(path, &trashed) ? std::optional(trashed) : std::nullopt;
}

bool DiskBundleFiles::putBack(const QString& trashed, const QString& path)
{
    if (!rename(trashed, path))
        return false;
    QFile::remove(trashRecordOf(trashed));
    return true;
}

void DiskBundleFiles::remove(const QString& path)
{
    std::error_code code;
    fs::remove_all(pathOf(path), code);
}

} // namespace quarry
