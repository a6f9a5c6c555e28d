#pragma once

#include "engines/PageFacts.h"
#include "engines/SearchService.h"

#include <QList>
#include <QMap>
#include <QString>

#include <array>

namespace quarry {

/// How a service is doing.
enum class ServiceVerdict {
    Results,       ///< It showed results that could be read.
    NothingFound,  ///< It says itself that there are none.
    Blocked,       ///< It refuses: status 403 or 429, or a challenge page.
    NotRecognised, ///< A page came, but nothing in it is what this service's pages are known to hold.
    Unreachable,   ///< No page came.
};

inline constexpr std::array AllServiceVerdicts = {ServiceVerdict::Results, ServiceVerdict::NothingFound,
                                                  ServiceVerdict::Blocked, ServiceVerdict::NotRecognised,
                                                  ServiceVerdict::Unreachable};

/// What one page says about its service.
[[nodiscard]] ServiceVerdict verdictOn(const PageFacts& page);

/// What happened with one service: on one page, for one query, or in a whole run, added up. A plain value.
struct ServiceHealth {
    struct Judged {
        int pages = 0;
        QString error; ///< Why, of the first of these pages that says why; else empty.
        friend bool operator==(const Judged&, const Judged&) = default;
    };

    int cachedPages = 0;
    QMap<int, int> statuses; ///< Replies by their HTTP status. Pages from the cache and without a reply are not here.
    qint64 bytes = 0;        ///< From the network.
    double seconds = 0;      ///< Of all requests together.
    qint64 results = 0;
    /// All pages asked for, by what they say.
    std::array<Judged, AllServiceVerdicts.size()> judged;

    [[nodiscard]] static ServiceHealth of(const PageFacts& page);
    /// Together. With `isBrokenOff` the pages that a stop kept from coming count for nothing.
    [[nodiscard]] static ServiceHealth of(const QList<PageFacts>& pages, bool isBrokenOff = false);
    ServiceHealth& operator+=(const ServiceHealth& other);

    [[nodiscard]] Judged& judgedAs(ServiceVerdict verdict) { return judged[static_cast<std::size_t>(verdict)]; }
    [[nodiscard]] const Judged& judgedAs(ServiceVerdict verdict) const
    {
        return judged[static_cast<std::size_t>(verdict)];
    }
    /// Asked for, in all.
    [[nodiscard]] int pages() const;
    /// Of these, neither read nor said to be empty.
    [[nodiscard]] int pagesMissed() const;
    /// Of all pages together, the first of these that holds for one of them: blocked, results, not recognised,
    /// unreachable, nothing found. So a service that starts to refuse shows among its results, but one lost page
    /// does not hide that it works; and "nothing found" is never said where something was missed. Only of a service
    /// that was asked for a page.
    [[nodiscard]] ServiceVerdict verdict() const;

    friend bool operator==(const ServiceHealth&, const ServiceHealth&) = default;
};

/// Of one run; without the services that were not asked.
using HealthByService = QMap<SearchService, ServiceHealth>;

} // namespace quarry
