// Any bytes as a disk image: nothing may land beside the mount folder, and nothing may be left.
#include "FuzzTarget.h"
#include "support/TemporaryHome.h"
#include "updater/MountFolder.h"

#include <QDir>

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
    if (!quarry::test::writeFile(image, inputOf(data, size)))
        return 0;

    quarry::ImageLimits limits;
    limits.entries = 200;
    limits.bytes = 1 << 20;
    const bool attached = quarry::attachImage(image, folder, limits).isEmpty();
    require(namesIn(place.path()).size() == (attached ? 2 : 1), "something lies beside the mount folder");
    require(!attached || quarry::detachImage(folder).isEmpty(), "what was attached cannot be detached");
    require(namesIn(place.path()) == QStringList{QStringLiteral("image")}, "something is left");
    return 0;
}
