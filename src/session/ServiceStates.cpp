#include "session/ServiceStates.h"

#include "database/ServiceHealthFile.h"

namespace quarry {

QList<ServiceState> serviceStates(const HomeFolder& home, FileStore& files)
{
    const SearchServices services = SearchServices::load(home.searchServicesFile()).services;
    const QList<ServiceHealthFile::Run> runs = ServiceHealthFile(home, files).read();
    QList<ServiceState> states;
    for (const SearchService service : AllSearchServices) {
        ServiceState state{service, services.isEnabled(service), services.origin(service), std::nullopt, {}};
        if (const auto run = ServiceHealthFile::latestOf(runs, service, state.address)) {
            state.asked = run->ended;
            state.health = run->services.value(service);
        }
        states.append(state);
    }
    return states;
}

} // namespace quarry
