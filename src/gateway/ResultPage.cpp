#include "gateway/ResultPage.h"

#include "gateway/Markup.h"

#include <algorithm>
#include <cstdint>

namespace quarry {

namespace {

/// A result with its parts ready for the page.
struct Item {
    qsizetype position = 0; ///< On this page, from 0.
    QByteArray address;     ///< Absolute; only characters that need no escaping.
    QByteArray title;
    QByteArray excerpt;
};

/// Google's links lead over a redirect whose parameter holds the target, escaped once more as any parameter's value.
QByteArray googleItem(const Item& item)
{
    const QByteArray link = QByteArray(googleRedirect) + "?q=" + escapedParameter(item.address) +
                            "&amp;sa=U&amp;ved=0CB" + QByteArray::number(item.position);
    return "<li class=\"g\"><h3 class=\"r\"><a href=\"" + link + "\">" + item.title + "</a></h3><div class=\"s\">" +
           item.excerpt + "</div><cite>" + item.address + "</cite></li>\n";
}

QByteArray bingItem(const Item& item)
{
    return "<div class=\"sa_cc\"><div class=\"sb_tlst\"><h3><a href=\"" + item.address + "\">" + item.title +
           "</a></h3></div><p>" + item.excerpt + "</p><cite>" + item.address + "</cite></div>\n";
}

/// Every second of Yahoo's links counts the click first; the attribute beside it has the target.
QByteArray yahooItem(const Item& item)
{
    const bool isTracked = item.position % 2 == 1;
    const QByteArray link =
        isTracked ? QByteArray(yahooRedirect) + "?u=" + escapedParameter(item.address) + "\" ourl=\"" + item.address
                  : item.address;
    return "<div class=\"res\"><h3><a class=\"yschttl spt\" href=\"" + link + "\">" + item.title +
           "</a></h3><div class=\"abstr\">" + item.excerpt + "</div><span class=\"url\">" + item.address +
           "</span></div>\n";
}

QByteArray exaleadItem(const Item& item)
{
    return "<li class=\"resultItem\"><h3><a class=\"resultTitle\" href=\"" + item.address + "\">" + item.title +
           "</a></h3><p class=\"resultSummary\">" + item.excerpt + "</p></li>\n";
}

/// Ixquick numbers its links from 1 on every page, in apostrophes. From the second page on the title has a number of
/// its own that counts through all pages, in double quotes.
QByteArray ixquickItem(const Item& item, int start)
{
    QByteArray title = item.title;
    if (start > 0)
        title = "<span id=\"title_" + QByteArray::number((start | 1) + item.position) + "\">" + title + "</span>";
    return "<div class='result'><h3><a id='title_" + QByteArray::number(item.position + 1) + "' href='" + item.address +
           "'>" + title + "</a></h3><p class='desc'>" + item.excerpt + "</p><span class='url'>" + item.address +
           "</span></div>\n";
}

QByteArray itemMarkup(const Item& item, const ServiceRequest& request)
{
    switch (request.service) {
    case Service::Bing:
        return bingItem(item);
    case Service::Yahoo:
        return yahooItem(item);
    case Service::Exalead:
        return exaleadItem(item);
    case Service::Ixquick:
        return ixquickItem(item, request.start);
    case Service::Google:
        break;
    }
    return googleItem(item);
}

struct Frame {
    const char* before;
    const char* after;
};

/// The element that holds a service's results.
Frame frameOf(Service service)
{
    switch (service) {
    case Service::Bing:
        return {"<div id=\"results_container\">\n", "</div>\n"};
    case Service::Yahoo:
        return {"<div id=\"web\">\n", "</div>\n"};
    case Service::Exalead:
        return {"<ol id=\"results\">\n", "</ol>\n"};
    case Service::Ixquick:
        return {"<div id='results'>\n", "</div>\n"};
    case Service::Google:
        break;
    }
    return {"<div id=\"res\"><ol>\n", "</ol></div>\n"};
}

QByteArray head(const ServiceRequest& request)
{
    const QByteArray text = escapedMarkup(request.text.toUtf8());
    return "<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"><title>" + text + " - " + nameOf(request.service) +
           "</title></head>\n<body>\n<form action=\"/search\"><input name=\"q\" value=\"" + text +
           "\"> <input type=\"submit\" value=\"Search\"></form>\n";
}

QByteArray pager(const ServiceRequest& request, const SearchAnswer& answer)
{
    QByteArray links;
    const auto shown = static_cast<std::int64_t>(answer.found.size());
    if (request.first > 0) {
        const int back = std::max(0, request.nextStart() - 2 * resultsPerPage);
        links += "<a href=\"" + escapedMarkup(request.address(back)) + "\">Previous</a> ";
    }
    if (request.first + shown < answer.total && shown > 0)
        links += "<a href=\"" + escapedMarkup(request.address(request.nextStart())) + "\">Next</a>";
    return links.isEmpty() ? links : "<p>" + links + "</p>\n";
}

QByteArray noResults(const ServiceRequest& request)
{
    return "<p>No document matches <b>" + escapedMarkup(request.text.toUtf8()) + "</b>.</p>\n";
}

} // namespace

QByteArray ResultPage::html() const
{
    QByteArray page = head(request);
    if (!answer.found.empty()) {
        page += "<p>Results " + QByteArray::number(request.first + 1) + " to " +
                QByteArray::number(request.first + static_cast<int>(answer.found.size())) + " of " +
                QByteArray::number(answer.total) + "</p>\n";
    }
    const Frame frame = frameOf(request.service);
    page += frame.before;
    for (std::size_t i = 0; i < answer.found.size(); ++i) {
        const FoundDocument& found = answer.found[i];
        page += itemMarkup({static_cast<qsizetype>(i), base + documentAddress(found.path), escapedMarkup(found.title),
                            escapedExcerpt(found.excerpt)},
                           request);
    }
    page += frame.after;
    if (answer.found.empty())
        page += noResults(request);
    return page + pager(request, answer) + "</body></html>\n";
}

QByteArray documentAddress(const QByteArray& path)
{
    return "/doc/" + escapedPath(path.endsWith(".gz") ? path.chopped(3) : path);
}

} // namespace quarry
