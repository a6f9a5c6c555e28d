#include "engines/SearchAddresses.h"

#include "text/Url.h"

#include <array>

namespace quarry {

namespace {

/// One row a service: what follows the host in both forms, the key of its language value, and the fragments of an
/// advanced query.
struct AddressForms {
    QStringView plain;
    QStringView advanced;
    QStringView languageKey;
    QStringView words;
    QStringView phrase;
    QStringView website;
    /// The web site fragment carries the words itself and takes the place of the words fragment.
    bool websiteReplacesWords = false;
};

constexpr AddressForms Google = {
    u"/search?client=safari&rls=^language_&ie=UTF-8&oe=UTF-8&start=^start_&q=^query_",
    u"/search?client=safari&rls=^language_&ie=UTF-8&oe=UTF-8&start=^start_",
    u"100_Google language URL",
    u"&q=^query_",
    u"&q=\"^query_\"",
    u"&as_sitesearch=^website_",
};
constexpr AddressForms Yahoo = {
    u"/search?ei=UTF-8&xargs=0&b=^start_&p=^query_",
    u"/search?ei=UTF-8&xargs=0&b=^start_",
    u"100_Yahoo language URL",
    u"&p=^query_",
    u"&p=\"^query_\"",
    u"&vs=^website_",
};
constexpr AddressForms Bing = {
    u"/search?q=^query_&setmkt=^language_&go=&filt=all&first=^start_",
    u"/search?setmkt=^language_&first=^start_",
    u"130_Bing language URL",
    u"&q=^query_",
    u"&q=\"^query_\"",
    u"&q=^query_+site:^website_",
    true,
};
constexpr AddressForms Exalead = {
    u"/search/results?q=^query_&b=^start_&searchlanguages=^language_",
    u"/search/results?mode=allweb&b=^start_&searchlanguages=^language_",
    u"100_Exalead language URL",
    u"&q=^query_",
    u"&q=\"^query_\"",
    u"&q=\"^query_\"+site:^website_",
    true,
};
constexpr AddressForms Ixquick = {
    u"/do/"
    u"metasearch.pl?cat=web&cmd=process_search&language=^language_&engine0=v1all&ff=1&startat=^start_&query=^query_",
    u"/do/"
    u"metasearch.pl?cat=web&cmd=process_search&language=^language_&engine0=v1all&ff=1&startat=^start_&query=^query_",
    u"111_Ixquick language URL",
    {},
    {},
    {},
};

// In the order of SearchService.
constexpr std::array<const AddressForms*, AllSearchServices.size()> Forms = {&Google, &Yahoo, &Bing, &Exalead,
                                                                             &Ixquick};

const AddressForms& formsOf(SearchService service)
{
    return *Forms[indexOf(service)];
}

} // namespace

SearchAddresses::SearchAddresses(SearchServices services, TextLookup lookup)
    : _services(std::move(services)), _lookup(std::move(lookup))
{
}

QString SearchAddresses::googleSearchUrl(bool advanced) const
{
    return searchUrl(SearchService::Google, advanced);
}

QString SearchAddresses::bingSearchUrl(bool advanced) const
{
    return searchUrl(SearchService::Bing, advanced);
}

QString SearchAddresses::yahooSearchUrl(bool advanced) const
{
    return searchUrl(SearchService::Yahoo, advanced);
}

QString SearchAddresses::exaleadSearchUrl(bool advanced) const
{
    return searchUrl(SearchService::Exalead, advanced);
}

QString SearchAddresses::ixquickSearchUrl(bool advanced) const
{
    return searchUrl(SearchService::Ixquick, advanced);
}

QString SearchAddresses::searchUrl(SearchService service, bool advanced) const
{
    const AddressForms& forms = formsOf(service);
    QString language = _lookup(forms.languageKey.toString());
    QString address = _services.origin(service);
    if (service == SearchService::Yahoo) {
        language.replace(QLatin1String("yahooLanguageEmptyForEN"), QLatin1String(""));
        // The language is a prefix of the public host's name. Another host has no such names.
        if (!_services.endpoint(service).hostChanged)
            address.insert(address.indexOf(QLatin1String("://")) + 3, QLatin1String("^language_"));
    }
    address += advanced ? forms.advanced : forms.plain;
    address.replace(QLatin1String("^language_"), language, Qt::CaseInsensitive);
    return address;
}

QString SearchAddresses::advancedSearchUrl(SearchService service, qint64 wordsRestriction, bool hasWebsite) const
{
    const AddressForms& forms = formsOf(service);
    QString address = searchUrl(service, true);
    if (!hasWebsite || !forms.websiteReplacesWords) {
        if (wordsRestriction == 1)
            address += forms.words;
        else if (wordsRestriction == 2 || wordsRestriction == 3)
            address += forms.phrase;
    }
    if (hasWebsite)
        address += forms.website;
    return address;
}

QString fillSearchUrl(const QString& address, const QString& query, const QString& website)
{
    constexpr QStringView QueryMark = u"^query_";
    constexpr QStringView WebsiteMark = u"^website_";
    QString filled;
    qsizetype done = 0;
    for (qsizetype at = address.indexOf(u'^'); at >= 0; at = address.indexOf(u'^', at + 1)) {
        const QStringView rest = QStringView(address).mid(at);
        const bool isQuery = rest.startsWith(QueryMark);
        if (!isQuery && !rest.startsWith(WebsiteMark))
            continue;
        filled += QStringView(address).mid(done, at - done);
        filled += isQuery ? query : website;
        done = at + (isQuery ? QueryMark : WebsiteMark).size();
    }
    filled += QStringView(address).mid(done);
    return filled;
}

QString finishedSearchUrl(const QString& address, qint64 start, bool ampersandMarkers)
{
    QString finished = address;
    finished.replace(QLatin1String("^start_"), QString::number(start));
    finished = percentEscaped(finished);
    if (ampersandMarkers)
        finished.replace(QLatin1String("_&&&&&_"), QLatin1String("%26"));
    return finished;
}

} // namespace quarry
