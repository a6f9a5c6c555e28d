#pragma once

#include "gateway/ServiceDialect.h"

#include <QByteArray>

namespace quarry {

/// What a result page shows.
struct ResultPage {
    ServiceRequest request;
    SearchAnswer answer;
    QByteArray base; ///< "http://HOST:PORT", without a slash at the end.

    /// The page in the markup of the request's service: complete HTML in UTF-8. Everything in it that came from
    /// outside is escaped; each result stands on one line, since readers of these pages join lines without a blank.
    [[nodiscard]] QByteArray html() const;
};

/// Where each document is served, below the host.
[[nodiscard]] QByteArray documentAddress(const QByteArray& path);
/// The redirects that results of two services go through, below the host, up to the target.
constexpr const char* googleRedirect = "/url";
constexpr const char* yahooRedirect = "/track/yahoo.com/click";

} // namespace quarry
