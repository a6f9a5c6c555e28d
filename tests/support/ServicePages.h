#pragma once

#include "engines/SearchService.h"

#include <QByteArray>
#include <QStringList>

#include <optional>

namespace quarry::test {

/// The service that a request is meant for, by its path and parameters, wherever it was sent.
inline std::optional<SearchService> serviceOf(const QByteArray& request)
{
    if (request.contains("/search?client="))
        return SearchService::Google;
    if (request.contains("/search?ei="))
        return SearchService::Yahoo;
    if (request.contains("/search/results?"))
        return SearchService::Exalead;
    if (request.contains("/do/metasearch.pl"))
        return SearchService::Ixquick;
    if (request.contains("setmkt="))
        return SearchService::Bing;
    return std::nullopt;
}

namespace detail {

struct Form {
    const char* begin;
    const char* item; ///< %1 the number in the page, %2 the address.
    const char* end;
};

inline Form formOf(SearchService service)
{
    switch (service) {
    case SearchService::Google:
        return {R"(<div id="res">)", R"(<li class="g"><h3 class="r"><a href="%2">title %2</a></h3></li>)", "</div>"};
    case SearchService::Yahoo:
        return {R"(<div id="web">)", R"(<div class="res"><a class="yschttl spt" href="%2">title %2</a></div>)",
                "</div>"};
    case SearchService::Bing:
        return {R"(<div id="results_container">)",
                R"(<div class="sa_cc"><div class="sb_tlst"><h3><a href="%2">title %2</a></h3></div></div>)", "</div>"};
    case SearchService::Ixquick:
        return {"", "<div class='result'><a id='title_%1' href='%2'>title %2</a></div>", ""};
    case SearchService::Exalead:
        break;
    }
    return {"", "", ""};
}

} // namespace detail

/// A first result page of a service with these links.
inline QByteArray resultPage(SearchService service, const QStringList& addresses)
{
    const detail::Form form = detail::formOf(service);
    QString page = QStringLiteral("<html><body>") + QLatin1String(form.begin);
    for (qsizetype i = 0; i < addresses.size(); ++i) {
        QString item = QLatin1String(form.item);
        item.replace(QLatin1String("%1"), QString::number(i + 1)).replace(QLatin1String("%2"), addresses[i]);
        page += item + QLatin1Char('\n');
    }
    if (addresses.isEmpty())
        page += QLatin1String("<p>No document matches</p>");
    return (page + QLatin1String(form.end) + QLatin1String("</body></html>")).toUtf8();
}

} // namespace quarry::test
