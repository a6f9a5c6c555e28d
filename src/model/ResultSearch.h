#pragma once

#include "model/ResultRecord.h"
#include "text/Folding.h"

#include <QString>

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
    QString _text;
    FoldedNeedle _needle;
};

} // namespace quarry
