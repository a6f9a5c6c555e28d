#pragma once

#include "engines/ScanCopy.h"
#include "engines/SearchService.h"
#include "text/PageDecoding.h"
#include "text/Url.h"

#include <QList>
#include <QString>
#include <QStringView>

#include <optional>

namespace quarry {

/// The texts that stand for a description that is not there.
struct DescriptionPlaceholders {
    QString noDescription; ///< "100_No description"
    QString pdfExtract;    ///< "122_PDF Extract"
};

/// A result as a page shows it. One with an empty title has a rank but makes no record.
struct FoundLink {
    QString title;
    Url url;
    QString description;
};

/// What one result page holds.
struct ExtractedPage {
    bool hasResultsArea = false; ///< Or several, or an empty one.
    int items = 0;               ///< Result elements, those that hold no link included.
    QList<FoundLink> links;
    bool hasEmptyArea = false;    ///< The results area is there, and neither an item nor any link is in it.
    std::optional<ScanCopy> text; ///< The page; none where it was not looked at.
};

/// Cuts the results out of a service's result page, in page order. Cheapest when the text is moved in. `start` is the
/// offset the page was asked for. Nothing is found in any page of Exalead, whose extraction is switched off. Reentrant.
[[nodiscard]] ExtractedPage extractPage(SearchService service, DecodedPage page, qint64 start,
                                        const DescriptionPlaceholders& placeholders);

/// The result blocks of a page of Ixquick: the elements of class "result" in apostrophes.
[[nodiscard]] QList<QStringView> extractIxquickFromPage(const ScanCopy& page);

} // namespace quarry
