#include "database/Schedule.h"

#include <algorithm>

namespace quarry {

namespace {

constexpr qint64 DefaultMinutes = 30;
constexpr double SecondsOfDay = 86400.0;

QString automaticKey()
{
    return QStringLiteral("pref_automatic_ON");
}
QString periodicityKey()
{
    return QStringLiteral("pref_automatic_periodicity");
}
QString lastUpdateKey()
{
    return QStringLiteral("pref_lastUpdate");
}
QString checkForUpdatesKey()
{
    return QStringLiteral("pref_checkForUpdates");
}

} // namespace

Schedule::Schedule(HomeFolder home, FileStore& files)
    : _home(std::move(home)), _file(_home.scheduleFile(), _home.writerLockFile(), files)
{
}

Schedule::Settings Schedule::read(Date now, QString* fault) const
{
    const PropertyListFile::Content content = _file.read();
    if (fault)
        *fault = content.fault;
    Settings settings;
    settings.exists = content.exists;
    settings.automatic = content.entries.value(automaticKey()).boolean().value_or(false);
    settings.checkForUpdates = content.entries.value(checkForUpdatesKey()).boolean().value_or(true);
    const qint64 minutes = content.entries.value(periodicityKey()).integer().value_or(0);
    settings.periodicityMinutes = minutes <= 0 ? DefaultMinutes : std::min(minutes, MostMinutes);
    if (const std::optional<double> seconds = content.entries.value(lastUpdateKey()).real()) {
        const Date date(*seconds);
        if (date.secondsSince(now) <= SecondsOfDay)
            settings.lastUpdate = date;
    }
    return settings;
}

QString Schedule::ensureExists() const
{
    return _file.read().exists ? QString() : change([](PlistValue::Dictionary&) {});
}

QString Schedule::setAutomatic(bool on) const
{
    return set(automaticKey(), on);
}

QString Schedule::setPeriodicityMinutes(qint64 minutes) const
{
    return set(periodicityKey(), minutes);
}

QString Schedule::setCheckForUpdates(bool on) const
{
    return set(checkForUpdatesKey(), on);
}

QString Schedule::setLastUpdate(Date date) const
{
    return set(lastUpdateKey(), date.secondsSinceReference());
}

QString Schedule::set(const QString& key, const PlistValue& value) const
{
    return change([&](PlistValue::Dictionary& entries) { entries.insert(key, value); });
}

QString Schedule::change(const std::function<void(PlistValue::Dictionary&)>& apply) const
{
    if (QString error = _home.makeFolders(); !error.isEmpty())
        return error;
    return _file.change([&apply](PlistValue::Dictionary& entries) {
        if (entries.isEmpty()) {
            entries.insert(automaticKey(), false);
            entries.insert(periodicityKey(), DefaultMinutes);
        }
        apply(entries);
    });
}

} // namespace quarry
