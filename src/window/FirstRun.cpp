#include "window/FirstRun.h"

#include "engines/SearchServices.h"
#include "text/LocalisedFormat.h"

namespace quarry {

FirstRun::FirstRun(Parts parts, WelcomePane& pane) : _parts(std::move(parts)), _pane(pane)
{
    connect(&_pane, &WelcomePane::scheduleWanted, this, &FirstRun::setSchedule);
    connect(&_pane, &WelcomePane::servicesWanted, this, &FirstRun::setServices);
}

void FirstRun::show()
{
    const Schedule::Settings schedule = Schedule(_parts.home, _parts.files).read(_parts.clock.now());
    const SearchServices services = SearchServices::load(_parts.home.searchServicesFile()).services;
    // One address for all is what the pane can show and set.
    const SearchService first = AllSearchServices.front();
    _pane.showSettings({schedule.automatic, static_cast<int>(schedule.periodicityMinutes),
                        services.endpoint(first).hostChanged ? services.origin(first) : QString()});
}

void FirstRun::setSchedule(bool automatic, int minutes)
{
    const Schedule schedule(_parts.home, _parts.files);
    QString error = schedule.setAutomatic(automatic);
    if (error.isEmpty())
        error = schedule.setPeriodicityMinutes(minutes);
    if (!error.isEmpty())
        Q_EMIT failed(error);
    else if (_parts.followSchedule)
        _parts.followSchedule(automatic, minutes);
}

void FirstRun::setServices(const QString& address)
{
    if (!address.isEmpty() && !SearchServicesFile::entryForAddress(address)) {
        Q_EMIT failed(filledFormat(_parts.texts.text(QStringLiteral("207_No address")), {address}));
        return;
    }
    const SearchServicesFile file(_parts.home, _parts.files);
    const QString error = address.isEmpty() ? file.reset() : file.reachAllAt(address);
    if (!error.isEmpty())
        Q_EMIT failed(error);
}

} // namespace quarry
