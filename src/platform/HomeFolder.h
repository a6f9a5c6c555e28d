#pragma once

#include <QString>

namespace quarry {

/// Every path below the user's home folder that the product uses, in one place. A plain value.
class HomeFolder final {
public:
    /// The user's own home folder ($HOME).
    [[nodiscard]] static HomeFolder ofUser();
    explicit HomeFolder(const QString& path);

    [[nodiscard]] QString path() const { return _path; }
    /// "Library/Application Support/QuarrySpotter"
    [[nodiscard]] QString supportFolder() const;
    /// Makes the support folder and the one of the preferences. A home folder that is not there is not made: it is
    /// a mistake. Returns one line for a person on failure, an empty text otherwise.
    [[nodiscard]] QString makeFolders() const;
    /// "Database.qsdata" in the support folder.
    [[nodiscard]] QString databaseFile() const;
    /// "Schedule.plist" in the support folder.
    [[nodiscard]] QString scheduleFile() const;
    /// "SearchServices.plist" in the support folder.
    [[nodiscard]] QString searchServicesFile() const;
    /// "ServiceHealth.plist" in the support folder.
    [[nodiscard]] QString serviceHealthFile() const;
    /// ".writerLock" in the support folder.
    [[nodiscard]] QString writerLockFile() const;
    /// ".updaterLock" in the support folder: held by the one refresh that runs.
    [[nodiscard]] QString updaterLockFile() const;
    /// ".agentLock" in the support folder: held by the one agent of this home folder; holds its process id.
    [[nodiscard]] QString agentLockFile() const;
    /// ".updaterFlag" in the support folder: the user accepted the offer of a software update; empty.
    [[nodiscard]] QString updaterFlagFile() const;
    /// "Blacklist" in the support folder.
    [[nodiscard]] QString blacklistFile() const;
    /// "UpdaterLog.log" in the support folder.
    [[nodiscard]] QString logFile() const;
    /// ".logLock" in the support folder: held while lines are added to the log file.
    [[nodiscard]] QString logLockFile() const;
    /// "Caches" in the support folder.
    [[nodiscard]] QString cachesFolder() const;
    /// The page-cache folder of one query.
    [[nodiscard]] QString queryCacheFolder(const QString& queryUuid) const;
    /// "Library/Preferences/com.zep.QuarrySpotter.plist"
    [[nodiscard]] QString preferencesFile() const;

private:
    QString _path;
};

} // namespace quarry
