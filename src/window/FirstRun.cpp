#include "window/FirstRun.h"

#include "engines/SearchServices.h"
#include "text/LocalisedFormat.h"

namespace quarry {

FirstRun::FirstRun(Parts parts, WelcomePane& pane) : _parts(std::move(parts)), _pane(pane), _worker(_parts.timers)
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

void FirstRun::write(std::function<QString()> how, std::function<void()> done)
{
    _worker.run([this, how = std::move(how), done = std::move(done)] {
        return [this, error = how(), done] {
            if (error.isEmpty())
                done();
            else
                Q_EMIT failed(error);
        };
    });
}

void FirstRun::setSchedule(bool automatic, int minutes)
{
    const auto change = [schedule = Schedule(_parts.home, _parts.files), automatic, minutes] {
        const QString error = schedule.setAutomatic(automatic);
        return error.isEmpty() ? schedule.setPeriodicityMinutes(minutes) : error;
    };
    write(change, [this, automatic, minutes] {
        if (_parts.followSchedule)
            _parts.followSchedule(automatic, minutes);
    });
}

void FirstRun::setServices(const QString& address)
{
    if (!address.isEmpty() && !SearchServicesFile::entryForAddress(address)) {
        Q_EMIT failed(filledFormat(_parts.texts.text(QStringLiteral("207_No address")), {address}));
        return;
    }
    const auto change = [file = SearchServicesFile(_parts.home, _parts.files), address] {
        return address.isEmpty() ? file.reset() : file.reachAllAt(address);
    };
    write(change, [] {});
}

} // namespace quarry
