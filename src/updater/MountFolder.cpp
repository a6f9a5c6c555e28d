#include "updater/MountFolder.h"

#include "platform/PrivateFolder.h"

#include <QFile>

#include <filesystem>
#include <fstream>
#include <system_error>

namespace quarry {

namespace {

namespace fs = std::filesystem;

/// Tells a folder of ours from one that a wrong argument names.
constexpr const char* markerName = ".attached-disk-image";

fs::path pathOf(const QString& folder)
{
    return QFile::encodeName(folder).toStdString();
}

/// Folders come without the write permission that removing what they hold needs.
void removeTree(const fs::path& folder)
{
    std::error_code code;
    fs::permissions(folder, fs::perms::owner_all, code);
    fs::recursive_directory_iterator entries(folder, code);
    for (const fs::recursive_directory_iterator end; !code && entries != end; entries.increment(code)) {
        std::error_code ignored;
        if (fs::is_directory(entries->symlink_status(ignored)))
            fs::permissions(entries->path(), fs::perms::owner_all, ignored);
    }
    fs::remove_all(folder, code);
}

} // namespace

QString attachImage(const QString& image, const QString& folder, const ImageLimits& limits)
{
    if (QString error = makePrivateFolder(folder); !error.isEmpty())
        return error;
    const fs::path place = pathOf(folder);
    QString fault;
    if (!std::ofstream(place / markerName))
        fault = QStringLiteral("nothing can be written there");
    else
        fault = unpackImage(image, place, limits);
    if (!fault.isEmpty()) {
        removeTree(place);
        return QStringLiteral("%1: %2").arg(image, fault);
    }
    std::error_code code;
    fs::permissions(place, fs::perms(0500), code);
    return {};
}

QString detachImage(const QString& folder)
{
    const fs::path place = pathOf(folder);
    std::error_code code;
    if (!isPrivateFolder(folder) || !fs::is_regular_file(fs::symlink_status(place / markerName, code)))
        return QStringLiteral("%1 is no folder with a disk image of this user").arg(folder);
    removeTree(place);
    return fs::exists(place, code) ? QStringLiteral("%1 cannot be removed").arg(folder) : QString();
}

} // namespace quarry
