#pragma once

#include "engines/SearchService.h"

#include <QByteArray>
#include <QString>

#include <array>
#include <cstdint>

namespace quarry {

/// Where each service is reached. By default the public hosts; the file "SearchServices.plist" in the support folder
/// changes that, a service at a time. A plain value.
///
/// The file is a property list (XML or binary): a dictionary whose keys are service names ("Google", "Yahoo", "Bing",
/// "Exalead", "Ixquick") and whose values are dictionaries with any of
///     "scheme"   text, "http" or "https"
///     "host"     text, a host name or IPv4 address, without scheme and port
///     "port"     whole number, 1 to 65535; without it the scheme's own port
///     "enabled"  boolean; false: the service is not asked at all
/// What is not named keeps its default. A file that makes no sense, an unknown name included, is set aside as a
/// whole: half a file could send queries to a place the user did not mean. See docs/search-services.md.
class SearchServices final {
public:
    struct Endpoint {
        QString scheme;
        QString host;
        std::uint16_t port = 0; ///< 0: the scheme's own.
        bool enabled = true;
        /// The host is not the public one: then it takes no language prefix.
        bool hostChanged = false;
    };

    /// The public hosts, all enabled.
    SearchServices();

    struct Loaded;
    /// A missing file is no fault: the defaults serve. Never reads more than a small file.
    [[nodiscard]] static Loaded load(const QString& path);
    [[nodiscard]] static Loaded fromPropertyList(const QByteArray& bytes);

    [[nodiscard]] const Endpoint& endpoint(SearchService service) const { return _endpoints[indexOf(service)]; }
    [[nodiscard]] bool isEnabled(SearchService service) const { return endpoint(service).enabled; }
    /// "https://www.google.com", "http://127.0.0.1:8080": what stands before the path.
    [[nodiscard]] QString origin(SearchService service) const;

private:
    std::array<Endpoint, AllSearchServices.size()> _endpoints;
};

/// The services, and what is wrong with the file: one line for a person, empty when nothing is. With a fault, the
/// services are the defaults.
struct SearchServices::Loaded {
    SearchServices services;
    QString error;
};

} // namespace quarry
