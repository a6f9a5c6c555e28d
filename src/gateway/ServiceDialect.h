#pragma once

#include "gateway/SearchSource.h"

#include <QByteArray>
#include <QString>

#include <map>
#include <optional>
#include <string>

namespace quarry {

/// The five services the gateway speaks for.
enum class Service { Google, Bing, Yahoo, Exalead, Ixquick };

/// Parameters of a request, decoded.
using Parameters = std::multimap<std::string, std::string>;

/// A request as one service understands it.
struct ServiceRequest {
    Service service = Service::Google;
    QString text;  ///< As typed.
    QString site;  ///< Of the service's own site parameter; empty without one.
    int start = 0; ///< The offset as asked for; never negative.
    int first = 0; ///< The first result wanted, counting from 0.

    /// None when no service answers that path. "/search" is shared by three, told apart by their parameters.
    [[nodiscard]] static std::optional<ServiceRequest> fromRequest(const std::string& path,
                                                                   const Parameters& parameters);
    /// The address of another page of the same search, below the host.
    [[nodiscard]] QByteArray address(int otherStart) const;
    /// The offset that a link to the next page carries.
    [[nodiscard]] int nextStart() const;
};

/// Every service shows so many results a page.
constexpr int resultsPerPage = 10;

[[nodiscard]] Ranking rankingOf(Service service);
[[nodiscard]] const char* nameOf(Service service);

} // namespace quarry
