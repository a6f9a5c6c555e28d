#include "engines/SearchService.h"

namespace quarry {

QString searchServiceName(SearchService service)
{
    switch (service) {
    case SearchService::Google:
        return QStringLiteral("Google");
    case SearchService::Yahoo:
        return QStringLiteral("Yahoo");
    case SearchService::Bing:
        return QStringLiteral("Bing");
    case SearchService::Exalead:
        return QStringLiteral("Exalead");
    case SearchService::Ixquick:
        return QStringLiteral("Ixquick");
    }
    return {};
}

QString searchServiceIdentifier(SearchService service)
{
    switch (service) {
    case SearchService::Google:
        return QStringLiteral("1");
    case SearchService::Yahoo:
        return QStringLiteral("2");
    case SearchService::Ixquick:
        return QStringLiteral("4");
    case SearchService::Bing:
        return QStringLiteral("5");
    case SearchService::Exalead:
        break;
    }
    return {};
}

} // namespace quarry
