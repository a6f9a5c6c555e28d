#include "updater/PreferencesDefaults.h"

#include "platform/SystemLog.h"

namespace quarry {

namespace {

QString warnAgainKey()
{
    return QStringLiteral("kWarnAgainUserForMoreRecentOS");
}

} // namespace

PreferencesDefaults::PreferencesDefaults(const HomeFolder& home, FileStore& files)
    : _home(home), _file(home.preferencesFile(), home.writerLockFile(), files)
{
}

bool PreferencesDefaults::warnAgainUserForMoreRecentOS() const
{
    return _file.read().entries.value(warnAgainKey()).boolean().value_or(true);
}

void PreferencesDefaults::setWarnAgainUserForMoreRecentOS(bool warnAgain)
{
    QString error = _home.makeFolders();
    if (error.isEmpty())
        error = _file.change([&](PlistValue::Dictionary& entries) { entries.insert(warnAgainKey(), warnAgain); });
    if (!error.isEmpty())
        systemLog(error);
}

} // namespace quarry
