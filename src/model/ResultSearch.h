#pragma once

#include "archive/StoredText.h"
#include "model/ResultRecord.h"
#include "text/Folding.h"

#include <QString>

#include <string>

namespace quarry {

/// The interactive search over results: a record matches when its title or page text contains the text ignoring
/// case and diacritics, or its address contains it ignoring case only. A plain value.
class ResultSearch final {
public:
    explicit ResultSearch(const QString& searchString);
    [[nodiscard]] bool matches(const ResultRecord& record) const;
    /// Whether everything that matches is known to match the other search as well. Never so for the empty search.
    [[nodiscard]] bool isWithin(const ResultSearch& other) const;
    /// The records that match, in their order.
    [[nodiscard]] ResultList filtered(const ResultList& records) const;

private:
    [[nodiscard]] bool isInText(const StoredText& text) const;
    [[nodiscard]] bool isInAddress(const StoredText& address) const;

    QString _text;
    std::string _asciiText; ///< In small letters, where it is ASCII.
    FoldedNeedle _needle;
};

} // namespace quarry
