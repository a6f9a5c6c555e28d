#include "session/ProductSettings.h"

#include "database/Preferences.h"
#include "database/Schedule.h"
#include "engines/SearchServices.h"
#include "engines/SearchServicesFile.h"

#include <functional>
#include <vector>

namespace quarry {

namespace {

using Entries = PlistValue::Dictionary;

/// Back to the public address where none is given.
void setAddress(Entries& entry, const QString& address)
{
    const std::optional<Entries> parts = SearchServicesFile::entryForAddress(address);
    setServiceAddress(entry, parts.value_or(Entries()));
}

QString saveServices(const ProductSettings& settings, const ProductSettings& before, const SearchServicesFile& file)
{
    return file.change([&](Entries& entries) {
        for (auto service = settings.services.begin(); service != settings.services.end(); ++service) {
            const ProductSettings::Service former = before.services.value(service.key());
            if (*service == former)
                continue;
            const QString name = searchServiceName(service.key());
            Entries entry = entries.value(name).dictionary().value_or(Entries());
            if (service->address != former.address)
                setAddress(entry, service->address);
            if (service->isAsked != former.isAsked)
                entry.insert(QStringLiteral("enabled"), service->isAsked);
            entries.insert(name, entry);
        }
    });
}

} // namespace

ProductSettings ProductSettings::read(const HomeFolder& home, FileStore& files, Date now)
{
    const Schedule::Settings schedule = Schedule(home, files).read(now);
    const Preferences::Settings preferences = Preferences(home, files).read();
    const SearchServices reached = SearchServices::load(home.searchServicesFile()).services;
    ProductSettings settings{schedule.automatic,           schedule.periodicityMinutes,  schedule.checkForUpdates,
                             preferences.resultsPerEngine, preferences.numberOfNewLinks, {}};
    const SearchServices publicOnes;
    for (const SearchService service : AllSearchServices) {
        const QString origin = reached.origin(service);
        settings.services.insert(
            service, {reached.isEnabled(service), origin == publicOnes.origin(service) ? QString() : origin});
    }
    return settings;
}

QString saveSettings(const ProductSettings& settings, const ProductSettings& before, const HomeFolder& home,
                     FileStore& files)
{
    const Schedule schedule(home, files);
    const Preferences preferences(home, files);
    const SearchServicesFile services(home, files);
    const std::pair<bool, std::function<QString()>> changes[] = {
        {settings.automatic != before.automatic, [&] { return schedule.setAutomatic(settings.automatic); }},
        {settings.minutes != before.minutes, [&] { return schedule.setPeriodicityMinutes(settings.minutes); }},
        {settings.checkForUpdates != before.checkForUpdates,
         [&] { return schedule.setCheckForUpdates(settings.checkForUpdates); }},
        {settings.resultsPerService != before.resultsPerService,
         [&] { return preferences.setResultsPerEngine(settings.resultsPerService); }},
        {settings.newLinks != before.newLinks, [&] { return preferences.setNumberOfNewLinks(settings.newLinks); }},
        {settings.services != before.services, [&] { return saveServices(settings, before, services); }},
    };
    for (const auto& [isChanged, save] : changes) {
        if (const QString error = isChanged ? save() : QString(); !error.isEmpty())
            return error;
    }
    return {};
}

} // namespace quarry
