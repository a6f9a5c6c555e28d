#pragma once

#include <QString>

namespace quarry {

/// What a page that gave no results has to say for itself.
enum class PageSign {
    Nothing,   ///< Nothing that is understood.
    NoResults, ///< That there are no results: in words, or by a list of results with nothing in it.
    Challenge, ///< It wants to know first whether a person is asking.
};

/// What became of one result page, for whoever watches how a service is doing.
struct PageFacts {
    enum class Source { Nowhere, Cache, Network };

    qint64 start = 0;                ///< Offset of its first result.
    QString address;                 ///< The finished address.
    Source source = Source::Nowhere; ///< Nowhere: there was no page.
    int httpStatus = 0;              ///< 0 without a reply.
    double seconds = 0;              ///< Of the request; 0 from the cache.
    QString error;                   ///< Why there was no page: one line for a person; else empty.
    qsizetype bytes = 0;             ///< As loaded; of the cached text when it came from the cache.
    bool hasResultsArea = false;
    int items = 0;   ///< Result elements found in the page.
    int results = 0; ///< Records made of them.
    /// Of a page without results, or of the reply that refused it.
    PageSign sign = PageSign::Nothing;
};

} // namespace quarry
