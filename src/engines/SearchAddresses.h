#pragma once

#include "engines/SearchServices.h"

#include <QString>

#include <functional>

namespace quarry {

/// Finds a text of the string tables by its key; an unknown key yields itself. Called from any thread.
using TextLookup = std::function<QString(const QString& key)>;

/// Builds the services' request addresses. What it returns is a template: the language is filled in, "^query_",
/// "^website_" and "^start_" stand where the query, the web site and the offset of the first result go. Safe to use
/// from several threads.
class SearchAddresses final {
public:
    SearchAddresses(SearchServices services, TextLookup lookup);

    [[nodiscard]] const SearchServices& services() const { return _services; }

    // The plain form holds "^query_"; the advanced form does not, fragments are appended to it.
    [[nodiscard]] QString googleSearchUrl(bool advanced) const;
    [[nodiscard]] QString bingSearchUrl(bool advanced) const;
    [[nodiscard]] QString yahooSearchUrl(bool advanced) const;
    [[nodiscard]] QString exaleadSearchUrl(bool advanced) const;
    /// The one form there is, whatever the argument.
    [[nodiscard]] QString ixquickSearchUrl(bool advanced) const;
    [[nodiscard]] QString searchUrl(SearchService service, bool advanced) const;

    /// The advanced form with the fragments for a words restriction (1 words, 2 and 3 the exact phrase, anything else
    /// no words at all) and, if there is one, for a web site. For Ixquick, which has no such form, its only form.
    [[nodiscard]] QString advancedSearchUrl(SearchService service, qint64 wordsRestriction, bool hasWebsite) const;

private:
    SearchServices _services;
    TextLookup _lookup;
};

/// Puts the query text and the web site into a template, in one step: a text that itself holds a placeholder stays as
/// it is. Nothing is escaped here; the finished address is, as a whole.
[[nodiscard]] QString fillSearchUrl(const QString& address, const QString& query, const QString& website = QString());

/// The address of the page that begins with the result at that offset: the offset filled in, the whole percent-escaped
/// as UTF-8.
[[nodiscard]] QString finishedSearchUrl(const QString& address, qint64 start, bool ampersandMarkers);

} // namespace quarry
