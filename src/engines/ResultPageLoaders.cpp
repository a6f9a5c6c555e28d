#include "engines/ResultPageLoaders.h"

#include <algorithm>

namespace quarry {

ResultPageLoaders::ResultPageLoaders(PageLoader& anywhere, PageLoader& publicOnly, SearchServices services,
                                     HostTest isPrivateHost)
    : _anywhere(anywhere), _publicOnly(publicOnly), _services(std::move(services)),
      _isPrivateHost(std::move(isPrivateHost))
{
}

PageLoader& ResultPageLoaders::loaderFor(const ResultRecord& record)
{
    const QString id = record.engineId().value_or(QString());
    const auto* service = std::find_if(AllSearchServices.begin(), AllSearchServices.end(), [&](SearchService each) {
        return !id.isEmpty() && searchServiceIdentifier(each) == id;
    });
    return service != AllSearchServices.end() && isPrivate(*service) ? _anywhere : _publicOnly;
}

bool ResultPageLoaders::isPrivate(SearchService service)
{
    const SearchServices::Endpoint& endpoint = _services.endpoint(service);
    // The public hosts are public whatever the resolver says.
    if (!endpoint.hostChanged)
        return false;
    Known& known = _known[indexOf(service)];
    std::call_once(known.asked, [&] { known.isPrivate = _isPrivateHost(endpoint.host); });
    return known.isPrivate;
}

} // namespace quarry
