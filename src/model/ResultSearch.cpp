#include "model/ResultSearch.h"

#include <algorithm>
#include <iterator>

namespace quarry {

ResultSearch::ResultSearch(const QString& searchString) : _text(searchString), _needle(searchString) {}

bool ResultSearch::matches(const ResultRecord& record) const
{
    const auto hasNeedle = [this](const std::optional<QString>& text) { return text && _needle.isIn(*text); };
    if (hasNeedle(record.title()) || hasNeedle(record.textFromPage()))
        return true;
    const std::optional<QString> address = record.urlText();
    return address && address->contains(_text, Qt::CaseInsensitive);
}

bool ResultSearch::isWithin(const ResultSearch& other) const
{
    return !other._text.isEmpty() && _text.contains(other._text, Qt::CaseInsensitive) &&
           _needle.contains(other._needle);
}

ResultList ResultSearch::filtered(const ResultList& records) const
{
    ResultList found;
    std::copy_if(records.begin(), records.end(), std::back_inserter(found),
                 [this](const ResultRecord& record) { return matches(record); });
    return found;
}

} // namespace quarry
