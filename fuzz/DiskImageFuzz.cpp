// Any bytes as a disk image: nothing may land beside the mount folder, and nothing may be left.
#include "updater/MountFolder.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdlib>

namespace {

QStringList namesIn(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const QTemporaryDir place;
    const QString image = place.filePath(QStringLiteral("image"));
    const QString folder = place.filePath(QStringLiteral("mounted"));
    QFile file(image);
    if (!file.open(QIODevice::WriteOnly) ||
        file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size)) != static_cast<qint64>(size))
        return 0;
    file.close();

    quarry::ImageLimits limits;
    limits.entries = 200;
    limits.bytes = 1 << 20;
    const bool attached = quarry::attachImage(image, folder, limits).isEmpty();
    if (namesIn(place.path()).size() != (attached ? 2 : 1))
        std::abort();
    if (attached && !quarry::detachImage(folder).isEmpty())
        std::abort();
    if (namesIn(place.path()) != QStringList{QStringLiteral("image")})
        std::abort();
    return 0;
}
