#include "model/PageCacheFiles.h"

#include "model/TreeLock.h"
#include "platform/SystemLog.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace quarry {

namespace {

bool isPlainName(const QString& name)
{
    const auto isPlain = [](QChar c) {
        const char16_t u = c.unicode();
        return (u >= u'0' && u <= u'9') || (u >= u'A' && u <= u'Z') || (u >= u'a' && u <= u'z') || u == u'-' ||
               u == u'_';
    };
    return !name.isEmpty() && std::all_of(name.begin(), name.end(), isPlain);
}

void removeFolder(const QString& path)
{
    const QFileInfo info(path);
    const bool removed = info.isSymLink() ? QFile::remove(path) : QDir(path).removeRecursively();
    if (!removed)
        debugLog(QStringLiteral("Page cache %1 was not deleted").arg(path));
}

} // namespace

void removeQueryCache(const QString& cachesFolder, const QString& queryUuid)
{
    if (cachesFolder.isEmpty() || !isPlainName(queryUuid))
        return;
    TreeLock::afterwards([path = cachesFolder + u'/' + queryUuid] { removeFolder(path); });
}

void removeThumbnail(const QString& cachesFolder, const QString& queryUuid, const QString& linkUuid)
{
    if (cachesFolder.isEmpty() || !isPlainName(queryUuid) || !isPlainName(linkUuid))
        return;
    const QString folder = cachesFolder + u'/' + queryUuid;
    TreeLock::afterwards([folder, path = folder + u'/' + linkUuid + QLatin1String(".jpg")] {
        if (!QFileInfo(folder).isSymLink())
            QFile::remove(path);
    });
}

} // namespace quarry
