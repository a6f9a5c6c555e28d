#include "gateway/ServiceDialect.h"

#include "gateway/Markup.h"

#include <algorithm>
#include <array>
#include <initializer_list>

namespace quarry {

namespace {

/// How one service is asked, and how it ranks.
struct Dialect {
    Service service;
    const char* name;
    const char* path;
    const char* text;
    const char* start;
    const char* site; ///< None where the site is part of the text.
    int firstOffset;  ///< The offset that stands for the first result.
    Ranking ranking;
};

// Bing and Yahoo count results from 1. Whoever asks them for 0, 10, 20 gets the tenth result twice, at the end of one
// page and at the head of the next; an offset of 0 is taken as 1.
constexpr std::array<Dialect, 5> dialects = {{
    {Service::Google, "Google", "/search", "q", "start", "as_sitesearch", 0, {8.0, 4.0, 1.0, Ranking::Liking::Nothing}},
    {Service::Bing, "Bing", "/search", "q", "first", nullptr, 1, {20.0, 1.0, 0.5, Ranking::Liking::Newer}},
    {Service::Yahoo, "Yahoo", "/search", "p", "b", "vs", 1, {2.0, 10.0, 1.0, Ranking::Liking::Shorter}},
    {Service::Exalead, "Exalead", "/search/results", "q", "b", nullptr, 0, {4.0, 1.0, 2.0, Ranking::Liking::Longer}},
    {Service::Ixquick,
     "Ixquick",
     "/do/metasearch.pl",
     "query",
     "startat",
     nullptr,
     0,
     {1.0, 1.0, 1.0, Ranking::Liking::ShorterPath}},
}};

const Dialect& dialectOf(Service service)
{
    return *std::find_if(dialects.begin(), dialects.end(),
                         [service](const Dialect& d) { return d.service == service; });
}

bool has(const Parameters& parameters, std::initializer_list<const char*> names)
{
    return std::any_of(names.begin(), names.end(), [&](const char* name) { return parameters.count(name) != 0; });
}

QString valueOf(const Parameters& parameters, const char* name)
{
    const auto found = name == nullptr ? parameters.end() : parameters.find(name);
    return found == parameters.end() ? QString() : QString::fromStdString(found->second);
}

std::optional<Service> serviceOf(const std::string& path, const Parameters& parameters)
{
    if (path == dialectOf(Service::Exalead).path)
        return Service::Exalead;
    if (path == dialectOf(Service::Ixquick).path)
        return Service::Ixquick;
    if (path != dialectOf(Service::Google).path)
        return std::nullopt;
    if (has(parameters, {"client", "rls", "start", "as_sitesearch"}))
        return Service::Google;
    if (has(parameters, {"first", "setmkt", "filt"}))
        return Service::Bing;
    return has(parameters, {"p", "b", "xargs", "vs"}) ? Service::Yahoo : Service::Google;
}

} // namespace

std::optional<ServiceRequest> ServiceRequest::fromRequest(const std::string& path, const Parameters& parameters)
{
    const std::optional<Service> service = serviceOf(path, parameters);
    if (!service)
        return std::nullopt;
    const Dialect& dialect = dialectOf(*service);
    ServiceRequest request;
    request.service = *service;
    request.text = valueOf(parameters, dialect.text);
    request.site = valueOf(parameters, dialect.site);
    // What is no number reads as 0.
    constexpr int farthestStart = 1'000'000;
    request.start = std::clamp(valueOf(parameters, dialect.start).toInt(), 0, farthestStart);
    request.first = std::max(0, request.start - dialect.firstOffset);
    return request;
}

QByteArray ServiceRequest::address(int otherStart) const
{
    const Dialect& dialect = dialectOf(service);
    QByteArray result = QByteArray(dialect.path) + '?' + dialect.start + '=' + QByteArray::number(otherStart) + '&' +
                        dialect.text + '=' + escapedParameter(text.toUtf8());
    if (!site.isEmpty())
        result += QByteArray("&") + dialect.site + '=' + escapedParameter(site.toUtf8());
    return result;
}

int ServiceRequest::nextStart() const
{
    return first + resultsPerPage + dialectOf(service).firstOffset;
}

Ranking rankingOf(Service service)
{
    return dialectOf(service).ranking;
}

const char* nameOf(Service service)
{
    return dialectOf(service).name;
}

} // namespace quarry
