#include "database/Preferences.h"

namespace quarry {

namespace {

QString resultsPerEngineKey()
{
    return QStringLiteral("pref_umberOfResultPerEngine");
}
QString numberOfNewLinksKey()
{
    return QStringLiteral("pref_numberOfNewLinks");
}

} // namespace

Preferences::Preferences(HomeFolder home, FileStore& files)
    : _home(std::move(home)), _file(_home.preferencesFile(), _home.writerLockFile(), files)
{
}

Preferences::Settings Preferences::read(QString* fault) const
{
    const PropertyListFile::Content content = _file.read();
    if (fault)
        *fault = content.fault;
    Settings settings;
    settings.resultsPerEngine =
        content.entries.value(resultsPerEngineKey()).integer().value_or(settings.resultsPerEngine);
    settings.numberOfNewLinks =
        content.entries.value(numberOfNewLinksKey()).integer().value_or(settings.numberOfNewLinks);
    return settings;
}

QString Preferences::setResultsPerEngine(qint64 count) const
{
    return set(resultsPerEngineKey(), count);
}

QString Preferences::setNumberOfNewLinks(qint64 count) const
{
    return set(numberOfNewLinksKey(), count);
}

QString Preferences::set(const QString& key, qint64 value) const
{
    if (QString error = _home.makeFolders(); !error.isEmpty())
        return error;
    return _file.change([&](PlistValue::Dictionary& entries) { entries.insert(key, value); });
}

} // namespace quarry
