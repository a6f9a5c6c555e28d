#include "platform/HomeFolder.h"

#include <QDir>
#include <QFileInfo>

namespace quarry {

HomeFolder HomeFolder::ofUser()
{
    return HomeFolder(QDir::homePath());
}

HomeFolder::HomeFolder(const QString& path) : _path(QDir::cleanPath(path)) {}

QString HomeFolder::supportFolder() const
{
    return _path + QStringLiteral("/Library/Application Support/QuarrySpotter");
}

QString HomeFolder::makeFolders() const
{
    if (!QFileInfo(_path).isDir())
        return QStringLiteral("the home folder %1 does not exist").arg(_path);
    for (const QString& folder : {supportFolder(), QFileInfo(preferencesFile()).path()}) {
        if (!QDir().mkpath(folder))
            return QStringLiteral("cannot make the folder %1").arg(folder);
    }
    return {};
}

QString HomeFolder::databaseFile() const
{
    return supportFolder() + QStringLiteral("/Database.qsdata");
}

QString HomeFolder::scheduleFile() const
{
    return supportFolder() + QStringLiteral("/Schedule.plist");
}

QString HomeFolder::searchServicesFile() const
{
    return supportFolder() + QStringLiteral("/SearchServices.plist");
}

QString HomeFolder::serviceHealthFile() const
{
    return supportFolder() + QStringLiteral("/ServiceHealth.plist");
}

QString HomeFolder::writerLockFile() const
{
    return supportFolder() + QStringLiteral("/.writerLock");
}

QString HomeFolder::updaterLockFile() const
{
    return supportFolder() + QStringLiteral("/.updaterLock");
}

QString HomeFolder::agentLockFile() const
{
    return supportFolder() + QStringLiteral("/.agentLock");
}

QString HomeFolder::updaterFlagFile() const
{
    return supportFolder() + QStringLiteral("/.updaterFlag");
}

QString HomeFolder::blacklistFile() const
{
    return supportFolder() + QStringLiteral("/Blacklist");
}

QString HomeFolder::logFile() const
{
    return supportFolder() + QStringLiteral("/UpdaterLog.log");
}

QString HomeFolder::logLockFile() const
{
    return supportFolder() + QStringLiteral("/.logLock");
}

QString HomeFolder::cachesFolder() const
{
    return supportFolder() + QStringLiteral("/Caches");
}

QString HomeFolder::queryCacheFolder(const QString& queryUuid) const
{
    return cachesFolder() + QLatin1Char('/') + queryUuid;
}

QString HomeFolder::preferencesFile() const
{
    return _path + QStringLiteral("/Library/Preferences/com.zep.QuarrySpotter.plist");
}

} // namespace quarry
